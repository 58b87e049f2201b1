#include "view/DisplayList.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "view/Canvas.h"

namespace valdrix::view {

namespace {

using Clip = std::shared_ptr<const Path>;

bool clipsAlike(const std::vector<Clip>& a, const std::vector<Clip>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i] && !(*a[i] == *b[i])) return false;
  return true;
}

bool encloses(const Rect& outer, const Rect& inner) {
  return outer.minX() <= inner.minX() && inner.maxX() <= outer.maxX() &&
         outer.minY() <= inner.minY() && inner.maxY() <= outer.maxY();
}

/// What an item may touch. Glyphs may reach out of their line box.
Rect inkedBounds(const DisplayItem& item) {
  return item.kind == DisplayItem::Kind::text ? item.bounds.outset(item.style.font.size / 3)
                                              : item.bounds;
}

/// What an item may touch within its clips.
Rect visibleBounds(const DisplayItem& item) {
  Rect bounds = inkedBounds(item);
  for (const auto& clip : item.clips) bounds = bounds.intersected(clip->bounds());
  return bounds;
}

/// Where a fill is all of its colour, and within a stroke where it draws nothing at all.
Rect evenPart(const DisplayItem& item) {
  if (item.kind == DisplayItem::Kind::text) return {};
  Rect part = item.path.band();
  if (item.kind == DisplayItem::Kind::stroke) part = part.outset(-item.lineWidth);
  for (const auto& clip : item.clips) part = part.intersected(clip->band());
  return part.isEmpty() ? Rect{} : part;
}

/// Colours are drawn in 256 steps: the end of a fade shows nothing new.
bool looksAlike(const Color& a, const Color& b) {
  const auto isSame = [](double x, double y) {
    return std::lround(x * 255) == std::lround(y * 255);
  };
  return isSame(a.red, b.red) && isSame(a.green, b.green) && isSame(a.blue, b.blue) &&
         isSame(a.alpha, b.alpha);
}

void addChange(Damage& damage, const DisplayItem& before, const DisplayItem& after) {
  const Rect touched = visibleBounds(before).united(visibleBounds(after));
  const bool isReshaped = before.kind == after.kind && looksAlike(before.color, after.color);
  damage.addAround(isReshaped ? evenPart(before).intersected(evenPart(after)) : Rect{}, touched);
}

void drawItem(const DisplayItem& item, Canvas& canvas) {
  switch (item.kind) {
    case DisplayItem::Kind::fill:
      return canvas.fill(item.path, item.color);
    case DisplayItem::Kind::stroke:
      return canvas.stroke(item.path, item.color, item.lineWidth, item.hasRoundCaps);
    case DisplayItem::Kind::text:
      return canvas.drawText(item.text, item.style, item.bounds, item.color);
  }
}

}  // namespace

bool DisplayItem::looksLike(const DisplayItem& other) const {
  return kind == other.kind && looksAlike(color, other.color) && bounds == other.bounds &&
         lineWidth == other.lineWidth && hasRoundCaps == other.hasRoundCaps && text == other.text &&
         style == other.style && path == other.path && clipsAlike(clips, other.clips);
}

void dropIdleClips(DisplayList& list) {
  for (auto& item : list)
    std::erase_if(item.clips, [&](const Clip& clip) {
      const bool isOwnOutline = item.kind == DisplayItem::Kind::fill && item.path == *clip;
      return isOwnOutline || encloses(clip->band(), inkedBounds(item));
    });
}

bool isOpaque(const DisplayList& list, const Rect& rect) {
  return std::ranges::any_of(list, [&](const DisplayItem& item) {
    return item.kind == DisplayItem::Kind::fill && item.color.alpha >= 1 &&
           encloses(evenPart(item), rect);
  });
}

Damage difference(const DisplayList& before, const DisplayList& after) {
  // Views draw in the order of the tree, so in most frames the lists run in step.
  Damage damage;
  if (before.size() == after.size()) {
    bool isInStep = true;
    for (std::size_t i = 0; i < after.size() && isInStep; ++i)
      isInStep = before[i].owner == after[i].owner;
    if (isInStep) {
      for (std::size_t i = 0; i < after.size(); ++i)
        if (!before[i].looksLike(after[i])) addChange(damage, before[i], after[i]);
      return damage;
    }
  }
  std::unordered_multimap<std::uint64_t, std::size_t> gone;
  for (std::size_t i = 0; i < before.size(); ++i) gone.emplace(before[i].owner, i);
  std::size_t next = 0;
  for (const auto& item : after) {
    auto [match, last] = gone.equal_range(item.owner);
    while (match != last && !before[match->second].looksLike(item)) ++match;
    // One that has come in front of others, or went behind them, counts as changed.
    if (match == last || match->second < next) damage.add(visibleBounds(item));
    if (match == last) continue;
    next = std::max(next, match->second);
    gone.erase(match);
  }
  for (const auto& [owner, index] : gone) damage.add(visibleBounds(before[index]));
  return damage;
}

void draw(const DisplayList& list, Canvas& canvas, const Rect& dirty) {
  std::vector<Clip> active;
  for (const auto& item : list) {
    if (visibleBounds(item).intersected(dirty).isEmpty()) continue;
    std::size_t common = 0;
    while (common < active.size() && common < item.clips.size() &&
           active[common] == item.clips[common])
      ++common;
    for (; active.size() > common; active.pop_back()) canvas.popClip();
    for (; active.size() < item.clips.size(); active.push_back(item.clips[active.size()]))
      canvas.pushClip(*item.clips[active.size()]);
    drawItem(item, canvas);
  }
  for (; !active.empty(); active.pop_back()) canvas.popClip();
}

}  // namespace valdrix::view
