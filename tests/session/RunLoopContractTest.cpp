// What every run loop does, on the simulated clock and on Qt's event loop.

#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include <QCoreApplication>

#include "desktop/session/QtApplication.h"
#include "desktop/session/QtRunLoop.h"
#include "sim/ManualRunLoop.h"
#include "tests/support/WaitFor.h"

namespace valdrix {
namespace {

class SimulatedWorld {
 public:
  platform::RunLoop& loop() { return loop_; }
  /// Lets time pass until `condition` holds, within a bound.
  bool runUntil(const std::function<bool()>& condition) {
    for (int step = 0; step < 10000 && !condition(); ++step) loop_.advance(0.001);
    return condition();
  }

 private:
  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
};

class QtWorld {
 public:
  platform::RunLoop& loop() { return loop_; }
  bool runUntil(const std::function<bool()>& condition) { return tests::waitFor(condition); }

 private:
  desktop::QtRunLoop loop_;
};

template <class W>
class RunLoopContract : public testing::Test {
 protected:
  platform::RunLoop& loop() { return world_.loop(); }
  /// Lets `seconds` pass on the loop's clock.
  void pass(double seconds) {
    const double end = loop().now() + seconds;
    ASSERT_TRUE(world_.runUntil([&] { return loop().now() >= end; }));
  }
  W world_;
};

using Worlds = testing::Types<SimulatedWorld, QtWorld>;
TYPED_TEST_SUITE(RunLoopContract, Worlds);

TYPED_TEST(RunLoopContract, OneShotTimersRunOnceInOrderAndNeverEarly) {
  const double start = this->loop().now();
  std::vector<double> fired;
  const auto note = [&] { fired.push_back(this->loop().now() - start); };
  const Token late = this->loop().scheduleTimer(0.03, false, note);
  const Token early = this->loop().scheduleTimer(0.01, false, note);
  const Token atOnce = this->loop().scheduleTimer(-1, true, note);
  EXPECT_TRUE(fired.empty()) << "nothing runs inside scheduleTimer";
  ASSERT_TRUE(this->world_.runUntil([&] { return fired.size() == 3; }));
  this->pass(0.05);
  ASSERT_EQ(fired.size(), 3U);
  EXPECT_GE(fired[1], 0.01);
  EXPECT_GE(fired[2], 0.03);
}

TYPED_TEST(RunLoopContract, RepeatingTimersKeepTheirBeat) {
  const double start = this->loop().now();
  std::vector<double> ticks;
  const Token token = this->loop().scheduleTimer(
      0.0105, true, [&] { ticks.push_back(this->loop().now() - start); });
  ASSERT_TRUE(this->world_.runUntil([&] { return ticks.size() >= 5; }));
  for (std::size_t i = 0; i < ticks.size(); ++i)
    EXPECT_GE(ticks[i], 0.0105 * double(i + 1) - 1e-9) << "tick " << i << " was early";
}

TYPED_TEST(RunLoopContract, ABlockMayEndItsOwnTimerAndOthers) {
  int ticks = 0;
  int others = 0;
  Token own;
  Token other = this->loop().scheduleTimer(0.02, false, [&] { ++others; });
  own = this->loop().scheduleTimer(0.005, true, [&] {
    if (++ticks < 2) return;
    own.reset();
    other.reset();
  });
  ASSERT_TRUE(this->world_.runUntil([&] { return ticks == 2; }));
  this->pass(0.05);
  EXPECT_EQ(ticks, 2);
  EXPECT_EQ(others, 0);
}

TYPED_TEST(RunLoopContract, IntervalsBeyondAnyLifetimeNeverFire) {
  int fired = 0;
  std::vector<Token> tokens;
  for (const double interval :
       {4.0e6, 1e18, std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity()})
    for (const bool repeats : {false, true})
      tokens.push_back(this->loop().scheduleTimer(interval, repeats, [&] { ++fired; }));
  for (const Token& token : tokens) EXPECT_TRUE(token);
  this->pass(0.03);
  EXPECT_EQ(fired, 0);
}

TYPED_TEST(RunLoopContract, AsyncKeepsTheOrderOfEachThread) {
  std::vector<int> seen;
  this->loop().async([&] {
    seen.push_back(0);
    this->loop().async([&] { seen.push_back(100); });
  });
  EXPECT_TRUE(seen.empty()) << "nothing runs inside async";
  const auto main = std::this_thread::get_id();
  std::thread([&] {
    for (int i = 1; i < 100; ++i)
      this->loop().async([&, i] {
        EXPECT_EQ(std::this_thread::get_id(), main);
        seen.push_back(i);
      });
  }).join();
  ASSERT_TRUE(this->world_.runUntil([&] { return seen.size() == 101; }));
  for (int i = 0; i <= 100; ++i) EXPECT_EQ(seen[std::size_t(i)], i);
}

TEST(QtRunLoop, WhatWaitsWhenItGoesDoesNotRun) {
  auto loop = std::make_unique<desktop::QtRunLoop>();
  const auto block = std::make_shared<int>(0);
  loop->async([block] { ++*block; });
  loop.reset();
  QCoreApplication::processEvents();
  EXPECT_EQ(*block, 0);
  EXPECT_EQ(block.use_count(), 1) << "and is let go of";
}

TEST(QtApplication, TerminatesAfterTheCurrentTurnAlsoBeforeTheLoopRuns) {
  desktop::QtApplication application;
  application.setActivationPolicy(platform::ActivationPolicy::accessory);
  bool hasFinishedTurn = false;
  desktop::QtRunLoop loop;
  application.terminate();
  EXPECT_EQ(QCoreApplication::exec(), 0);
  loop.async([&] {
    application.terminate();
    hasFinishedTurn = true;
  });
  EXPECT_EQ(QCoreApplication::exec(), 0);
  EXPECT_TRUE(hasFinishedTurn);
}

}  // namespace
}  // namespace valdrix
