#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "observation/Observed.h"

namespace valdrix {
namespace {

TEST(Observed, OnlyADifferentValueTellsAndEachReaderOnce) {
  Observed<int> value(1);
  int calls = 0;
  Observer observer([&] {
    ++calls;
    EXPECT_EQ(value.get(), 2) << "told once the new value stands";
  });
  observer.track([&] { return value.get() + value.get() + value.get(); });
  value = 1;
  EXPECT_EQ(calls, 0);
  value = 2;
  EXPECT_EQ(calls, 1);
}

TEST(Observed, TrackingAgainReplacesWhatWasRead) {
  Observed<bool> usesFirst(true);
  Observed<int> first(1);
  Observed<int> second(2);
  int calls = 0;
  Observer observer([&] { ++calls; });
  const auto read = [&] { return usesFirst ? first.get() : second.get(); };
  EXPECT_EQ(observer.track(read), 1);
  second = 20;
  EXPECT_EQ(calls, 0);
  usesFirst = false;
  EXPECT_EQ(observer.track(read), 20);
  calls = 0;
  first = 10;
  EXPECT_EQ(calls, 0);
  second = 21;
  EXPECT_EQ(calls, 1);
}

TEST(Observed, InnerTrackingKeepsItsReadsFromTheOuterOne) {
  Observed<int> inner(0);
  Observed<int> outer(0);
  std::string told;
  Observer innerObserver([&] { told += 'i'; });
  Observer outerObserver([&] { told += 'o'; });
  outerObserver.track([&] {
    innerObserver.track([&] { return inner.get(); });
    return outer.get();
  });
  inner = 1;
  EXPECT_EQ(told, "i");
  outer = 1;
  EXPECT_EQ(told, "io");
}

TEST(Observed, ObserversMayEndInsideCallbacks) {
  Observed<int> value(0);
  std::string told;
  std::unique_ptr<Observer> second;
  std::unique_ptr<Observer> first = std::make_unique<Observer>([&] {
    told += '1';
    second.reset();
    first.reset();
  });
  second = std::make_unique<Observer>([&] { told += '2'; });
  first->track([&] { return value.get(); });
  second->track([&] { return value.get(); });
  value = 1;
  value = 2;
  EXPECT_EQ(told, "1");
}

TEST(Listeners, EachMayEndAnyRegistrationOrAddOneInItsCall) {
  Listeners<int> listeners;
  std::string told;
  Token first;
  Token second;
  Token added;
  first = listeners.add([&](int) {
    told += '1';
    first.reset();
    second.reset();
    added = listeners.add([&](int value) { told += std::to_string(value); });
  });
  second = listeners.add([&](int) { told += '2'; });
  listeners.notify(7);
  EXPECT_EQ(told, "1");
  listeners.notify(8);
  EXPECT_EQ(told, "18");
  added.reset();
  EXPECT_TRUE(listeners.isEmpty());
}

TEST(Lifetime, ABlockDoesNothingOnceItsOwnerIsGone) {
  auto owner = std::make_unique<Lifetime>();
  const auto block = owner->weak([](int x) { return x + 1; });
  EXPECT_EQ(block(1), 2);
  owner.reset();
  EXPECT_EQ(block(1), 0);
}

TEST(Token, EndsOnceWhoeverHoldsIt) {
  int ends = 0;
  {
    Token token([&] { ++ends; });
    Token other = std::move(token);
    token.reset();
    EXPECT_EQ(ends, 0);
    other = Token();
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(other);
  }
  EXPECT_EQ(ends, 1);
}

}  // namespace
}  // namespace valdrix
