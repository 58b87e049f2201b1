// Identity, state and what is evaluated when.

#include <gtest/gtest.h>

#include "tests/view/Stage.h"

namespace valdrix::view {
namespace {

struct Model {
  Observed<int> left{0};
  Observed<int> right{0};
  Observed<int> order{0};
  Observed<bool> hasDetail{true};
};

struct Side {
  const Observed<int>* value;
  int* evaluations;
  [[nodiscard]] View body() const {
    ++*evaluations;
    return label(std::to_string(value->get()));
  }
  bool operator==(const Side&) const = default;
};

TEST(Component, OnlyReadersOfWhatChangedAreEvaluatedAgain) {
  Model model;
  int outer = 0;
  int left = 0;
  int right = 0;
  Stage stage(Made{[&] {
    ++outer;
    return hStack({.spacing = model.order.get() * 1.0},
                  {Side{&model.left, &left}, Side{&model.right, &right}});
  }});
  stage.frame();
  EXPECT_EQ(outer * 100 + left * 10 + right, 111);
  model.left = 1;
  model.left = 2;
  EXPECT_TRUE(stage.host->needsFrame());
  stage.frame();
  EXPECT_EQ(outer * 100 + left * 10 + right, 121) << "once for both changes, and alone";
  model.order = 1;
  stage.frame();
  EXPECT_EQ(outer * 100 + left * 10 + right, 221) << "equal components are left alone";
}

/// Remembers the text that it was first made with.
struct Row {
  std::string text;
  std::string* gone;
  struct State {
    std::string first;
    Observed<bool> isHovered{false};
  };
  [[nodiscard]] View body(State& state) const {
    if (state.first.empty()) state.first = text;
    const bool isHovered = state.isHovered;
    return label(state.first, isHovered ? green : red)
        .onHover([&state](bool isInside) { state.isHovered = isInside; })
        .onDisappear([&state, this_ = *this] { *this_.gone += state.first; });
  }
};

class Rows : public testing::Test {
 protected:
  [[nodiscard]] View list() {
    return Made{[this] {
      std::vector<View> rows;
      for (const auto& name : names.get())
        rows.push_back(View(Row{name, &gone}).id(name.substr(0, 1)));
      return vStack({.alignment = HorizontalAlignment::leading}, std::move(rows));
    }};
  }
  [[nodiscard]] static std::string texts(const Stage& stage) {
    std::string all;
    for (const auto& item : stage.host->displayList()) all += item.text;
    return all;
  }
  Observed<std::vector<std::string>> names{{"a", "b", "c"}};
  std::string gone;
};

TEST_F(Rows, StateFollowsTheIdentityAndEndsWithIt) {
  Stage stage(list());
  stage.frame();
  names = {"c2", "a2", "d"};
  stage.frame();
  EXPECT_EQ(texts(stage), "cad");
  EXPECT_EQ(gone, "b");
  names = {"b2"};
  stage.frame();
  EXPECT_EQ(texts(stage), "b2");
}

TEST_F(Rows, ActionsOfARowThatGoesStillFindItsState) {
  auto stage = std::make_unique<Stage>(list());
  stage->frame();
  stage->host->pointerMoved({200, 145});
  stage->frame();
  EXPECT_TRUE(stage->box(green)) << "the second row is under the pointer";
  names = {"a"};
  stage->frame();
  EXPECT_EQ(gone.size(), 2U);
  stage.reset();
  EXPECT_EQ(gone.size(), 3U);
}

TEST(Lifecycle, AppearChangeAndDisappear) {
  Observed<bool> isShown(true);
  Observed<int> value(1);
  std::string told;
  Stage stage(Made{[&]() -> View {
    if (!isShown) return View();
    return label("x")
        .onAppear([&] { told += "appear "; })
        .onDisappear([&] { told += "gone "; })
        .onChange<int>(value, true, [&](int now) { told += "initial" + std::to_string(now) + ' '; })
        .onChange<int>(value, false, [&](int now) { told += "later" + std::to_string(now) + ' '; });
  }});
  EXPECT_EQ(told, "appear initial1 ");
  told.clear();
  value = 2;
  value = 3;
  stage.frame();
  EXPECT_EQ(told, "initial3 later3 ");
  told.clear();
  isShown = false;
  stage.frame();
  isShown = true;
  stage.frame();
  EXPECT_EQ(told, "gone appear initial3 ");
}

}  // namespace
}  // namespace valdrix::view
