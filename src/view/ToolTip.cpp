#include "view/ToolTip.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "view/Path.h"

namespace valdrix::view {

namespace {

/// Seconds over a view before its sign comes.
constexpr double delay = 0.7;
constexpr double fadeDuration = 0.12;
constexpr double opacityTolerance = 0.002;

constexpr double mostWidth = 320;
constexpr int mostLines = 4;
constexpr double fontSize = 11;
constexpr Size padding{8, 5};
constexpr double cornerRadius = 6;
constexpr double outlineWidth = 0.5;
constexpr double outlineOpacity = 0.2;
constexpr double textOpacity = 0.9;
constexpr Color background{0.15, 0.15, 0.16};

/// From the pointer's tip to the sign, clear of the pointer's own picture.
constexpr Size pointerGap{4, 20};
constexpr double gapAbove = 6;
constexpr double margin = 4;

/// These items belong to no node, whose numbers count up from 1.
constexpr auto firstOwner = std::numeric_limits<std::uint64_t>::max() - 2;

Rect placed(Size size, Point pointer, const Rect& area) {
  const double right = area.maxX() - margin - size.width;
  double top = pointer.y + pointerGap.height;
  if (top + size.height > area.maxY() - margin) top = pointer.y - gapAbove - size.height;
  return {std::floor(std::max(area.minX() + margin, std::min(pointer.x + pointerGap.width, right))),
          std::floor(std::max(area.minY() + margin, top)), size.width, size.height};
}

}  // namespace

ToolTip::ToolTip(const HostingView::Services& services, std::function<void()> onChange)
    : services_(services), onChange_(std::move(onChange)), opacity_(opacityTolerance) {}

void ToolTip::update(const std::string& text, std::optional<Point> pointer) {
  pointer_ = pointer;
  if (text == text_) return;
  text_ = text;
  timer_.reset();
  fade(0);
  if (!text_.empty()) timer_ = services_.scheduleRepeatingTimer(delay, [this] { show(); });
}

void ToolTip::dismiss() {
  timer_.reset();
  fade(0);
}

void ToolTip::show() {
  timer_.reset();
  if (!pointer_) return;
  shownText_ = text_;
  anchor_ = *pointer_;
  fade(1);
}

void ToolTip::fade(double opacity) {
  if (opacity_.target()[0] == opacity) return;
  opacity_.set({opacity}, Transaction{EaseOut{fadeDuration}}, services_.now());
  onChange_();
}

bool ToolTip::advance(double time) {
  opacity_.advance(time);
  return opacity_.isMoving();
}

void ToolTip::draw(DisplayList& list, const Rect& area) {
  const double opacity = opacity_.values()[0];
  if (opacity <= 0) return;
  const TextStyle style{.font = {.size = fontSize}, .lineLimit = mostLines};
  const double widest = std::min(mostWidth, area.width - 2 * (margin + padding.width));
  const Size text = services_.textMetrics.measure(shownText_, style, std::max(0.0, widest));
  const Size size{std::ceil(text.width + 2 * padding.width),
                  std::ceil(text.height + 2 * padding.height)};
  const Rect sign = placed(size, anchor_, area);
  const Path outline = Path::roundedRectangle(sign, cornerRadius, true);
  const auto newItem = [opacity](std::uint64_t owner, const Color& color) {
    DisplayItem item;
    item.owner = firstOwner + owner;
    item.color = color.withOpacity(opacity);
    return item;
  };
  DisplayItem ground = newItem(0, background);
  ground.path = outline;
  ground.bounds = sign;
  list.push_back(std::move(ground));

  DisplayItem edge = newItem(1, Color::white(outlineOpacity));
  edge.kind = DisplayItem::Kind::stroke;
  edge.path = outline;
  edge.lineWidth = outlineWidth;
  edge.bounds = sign.outset(outlineWidth);
  list.push_back(std::move(edge));

  DisplayItem words = newItem(2, Color::white(textOpacity));
  words.kind = DisplayItem::Kind::text;
  words.text = shownText_;
  words.style = style;
  words.bounds = {sign.x + padding.width, sign.y + padding.height, sign.width - 2 * padding.width,
                  sign.height - 2 * padding.height};
  list.push_back(std::move(words));
}

}  // namespace valdrix::view
