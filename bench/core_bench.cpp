// What the core's decisions and frames cost, beside small things whose cost everybody knows.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

#include "bench/core/AllocationCount.h"
#include "bench/core/Stage.h"
#include "notch/NotchAnimations.h"
#include "view/Transaction.h"

namespace valdrix::bench {
namespace {

using benchmark::State;

/// Times `operation` and counts its allocations per iteration.
template <class Operation>
void measure(State& state, Operation operation) {
  operation();
  const auto before = allocationCount();
  for (auto _ : state) operation();
  state.counters["allocs"] = benchmark::Counter(static_cast<double>(allocationCount() - before),
                                                benchmark::Counter::kAvgIterations);
}

/// A measurement of something that did not happen is worse than none.
void require(State& state, bool condition, const char* what) {
  if (!condition) state.SkipWithError(what);
}

class NullCanvas final : public view::Canvas {
 public:
  void fill(const view::Path&, const view::Color&) override { ++operations; }
  void stroke(const view::Path&, const view::Color&, double, bool) override { ++operations; }
  void drawText(std::string_view, const view::TextStyle&, const view::Rect&,
                const view::Color&) override {
    ++operations;
  }
  void pushClip(const view::Path&) override { ++operations; }
  void popClip() override { ++operations; }

  int operations = 0;
};

void yardstickVirtualCall(State& state) {
  NullCanvas canvas;
  view::Canvas* target = &canvas;
  measure(state, [&] {
    benchmark::DoNotOptimize(target);
    target->popClip();
  });
}
BENCHMARK(yardstickVirtualCall)->Name("yardstick/virtual call");

void yardstickFunctionCall(State& state) {
  int calls = 0;
  std::function<void()> function = [&calls] { ++calls; };
  measure(state, [&] {
    benchmark::DoNotOptimize(function);
    function();
  });
}
BENCHMARK(yardstickFunctionCall)->Name("yardstick/std::function call");

void yardstickMapLookup(State& state) {
  std::map<std::string, bool, std::less<>> map;
  for (const char* key : {"brightnessHUDEnabled", "calendarMaxEvents", "calendarWindowDays",
                          "hiddenCalendarIDs", "hudDuration", "volumeHUDEnabled"})
    map.emplace(key, true);
  std::string_view key = "volumeHUDEnabled";
  measure(state, [&] {
    benchmark::DoNotOptimize(key);
    benchmark::DoNotOptimize(map.find(key));
  });
}
BENCHMARK(yardstickMapLookup)->Name("yardstick/lookup in a map of six texts");

void hoverFar(State& state) {
  HoverStage stage;
  bool isLeft = false;
  measure(state, [&] {
    isLeft = !isLeft;
    stage.pointer.move({isLeft ? 300.0 : 301.0, 400});
  });
  require(state, !stage.viewModel().isExpanded, "the panel expanded");
}
BENCHMARK(hoverFar)->Name("hover/far from the notch");

void hoverInside(State& state) {
  HoverStage stage;
  stage.pointer.move({756, 970});
  stage.settle();
  bool isLeft = false;
  measure(state, [&] {
    isLeft = !isLeft;
    stage.pointer.move({isLeft ? 700.0 : 701.0, 900});
  });
  require(state, stage.viewModel().isExpanded, "the panel is not expanded");
}
BENCHMARK(hoverInside)->Name("hover/inside the expanded panel");

void key(State& state, std::uint32_t modifierFlags, platform::TapResult expected) {
  KeyStage stage;
  auto result = expected;
  measure(state, [&] {
    result = stage.press(static_cast<std::uint32_t>(platform::MediaKey::volumeUp), modifierFlags);
    benchmark::DoNotOptimize(result);
  });
  require(state, result == expected, "the key was decided otherwise");
}
BENCHMARK_CAPTURE(key, pass, platform::modifierFlag::control, platform::TapResult::pass)
    ->Name("key/passed on");
BENCHMARK_CAPTURE(key, swallow, 0, platform::TapResult::swallow)->Name("key/swallowed");

void presentation(State& state, NotchPresentation presentation) {
  PanelStage stage(presentation);
  NullCanvas canvas;
  measure(state, [&] {
    const auto view = stage.makeView();
    const auto frame = view->prepareFrame();
    view->draw(canvas, frame.damage.bounds());
  });
  require(state, canvas.operations > 0, "nothing was drawn");
}
BENCHMARK_CAPTURE(presentation, collapsed, NotchPresentation::collapsed)
    ->Name("body, layout, draw/collapsed");
BENCHMARK_CAPTURE(presentation, volume, NotchPresentation::volumeHUD)
    ->Name("body, layout, draw/volume");
BENCHMARK_CAPTURE(presentation, brightness, NotchPresentation::brightnessHUD)
    ->Name("body, layout, draw/brightness");
BENCHMARK_CAPTURE(presentation, expanded, NotchPresentation::expanded)
    ->Name("body, layout, draw/expanded");

/// The panel 0.1 s after it began to expand.
class Expansion {
 public:
  Expansion() : view_(stage_.makeView()) {
    view_->prepareFrame(0);
    view::withAnimation(notchAnimation::show, [this] { stage_.model.isExpanded = true; });
    view_->prepareFrame(0);
    stage_.now = start;
  }
  /// The next frame; there and back again, so that the middle of the expansion never ends.
  view::HostingView::Frame step() {
    stage_.now = stage_.now > start ? start : start + 1.0 / 60;
    return view_->prepareFrame(0);
  }
  [[nodiscard]] const view::DisplayList& displayList() const { return view_->displayList(); }

 private:
  static constexpr double start = 0.1;
  PanelStage stage_{NotchPresentation::collapsed};
  std::unique_ptr<view::HostingView> view_;
};

void animationFrame(State& state) {
  Expansion expansion;
  view::HostingView::Frame frame;
  measure(state, [&] { frame = expansion.step(); });
  require(state, frame.isAnimating && !frame.damage.isEmpty(), "nothing moved");
}
BENCHMARK(animationFrame)->Name("frame/in the middle of an expansion");

void yardstickListCopy(State& state) {
  Expansion expansion;
  expansion.step();
  measure(state, [&] {
    view::DisplayList copy = expansion.displayList();
    benchmark::DoNotOptimize(copy.data());
  });
}
BENCHMARK(yardstickListCopy)->Name("yardstick/copy of that frame's display list");

}  // namespace
}  // namespace valdrix::bench

BENCHMARK_MAIN();
