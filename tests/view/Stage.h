#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "observation/Observed.h"
#include "view/HostingView.h"

namespace valdrix::view {

inline std::ostream& operator<<(std::ostream& out, const Rect& r) {
  return out << r.x << ',' << r.y << ' ' << r.width << 'x' << r.height;
}

/// Every character is 10 points wide and every line 20 high; text breaks anywhere.
class GridMetrics final : public TextMetrics {
 public:
  [[nodiscard]] Size measure(std::string_view text, const TextStyle& style,
                             double maxWidth) const override {
    ++count;
    const double width = 10 * static_cast<double>(text.size());
    if (width <= maxWidth) return {width, 20};
    const double perLine = std::max(10.0, std::floor(maxWidth / 10) * 10);
    const double lines = std::ceil(width / perLine);
    return {std::min(perLine, maxWidth),
            20 * (style.lineLimit > 0 ? std::min<double>(lines, style.lineLimit) : lines)};
  }
  mutable int count = 0;
};

/// A hosting view in a window whose frames and clock stand still until the test moves them.
class Stage {
 public:
  explicit Stage(const View& content, Size size = {400, 300}) {
    host = std::make_unique<HostingView>(
        content, HostingView::Services{.textMetrics = metrics,
                                       .now = [this] { return now; },
                                       .scheduleRepeatingTimer =
                                           [this](double interval, std::function<void()> block) {
                                             return addTimer(interval, std::move(block));
                                           }});
    host->setFrame({0, 0, size.width, size.height});
    // Fine enough that nothing is moved to a whole pixel.
    host->setScale(1e6);
  }

  HostingView::Frame frame() { return host->prepareFrame(0); }
  HostingView::Frame frameAt(double time) {
    now = time;
    return frame();
  }
  /// Draws frames as they are asked for, `interval` apart, until none is; gives their number.
  int framesUntilRest(double interval = 1.0 / 60, int most = 1000) {
    int count = 0;
    for (; host->needsFrame() && count < most; ++count) frameAt(now + interval);
    return count;
  }
  /// The box of the only thing of that colour, or nothing.
  std::optional<Rect> box(const Color& color) {
    std::optional<Rect> found;
    for (const auto& item : host->displayList())
      if (item.color.withOpacity(1 / item.color.alpha) == color) found = item.bounds;
    return found;
  }
  void tick() {
    const auto running = timers;
    for (const auto& timer : running) timer->block();
  }

  struct Timer {
    double interval;
    std::function<void()> block;
  };

  double now = 0;
  GridMetrics metrics;
  std::vector<std::shared_ptr<Timer>> timers;
  std::unique_ptr<HostingView> host;

 private:
  Token addTimer(double interval, std::function<void()> block) {
    auto timer = std::make_shared<Timer>(Timer{interval, std::move(block)});
    timers.push_back(timer);
    return Token([this, timer] { std::erase(timers, timer); });
  }
};

inline constexpr Color red{1, 0, 0, 1};
inline constexpr Color green{0, 1, 0, 1};
inline constexpr Color blue{0, 0, 1, 1};

inline View box(const Color& color) { return fill(Rectangle{}, color); }
inline View label(std::string content, const Color& color = Color::white()) {
  return text(std::move(content), TextStyle{.lineLimit = 1}, color);
}

/// A component whose body is a function.
struct Made {
  std::function<View()> make;
  [[nodiscard]] View body() const { return make(); }
};

}  // namespace valdrix::view
