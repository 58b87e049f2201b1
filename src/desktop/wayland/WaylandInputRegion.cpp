#include "desktop/wayland/WaylandInputRegion.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <linux/input-event-codes.h>

#include "desktop/screens/InputParts.h"

namespace valdrix::desktop {

namespace {

QPoint pixel(QPointF position) {
  return {static_cast<int>(std::floor(position.x())), static_cast<int>(std::floor(position.y()))};
}

}  // namespace

WaylandInputRegion::WaylandInputRegion(WaylandConnection& connection, WaylandPointer& pointer,
                                       Handlers handlers)
    : connection_(connection), pointer_(pointer), handlers_(std::move(handlers)) {}

bool WaylandInputRegion::isInHole() const {
  return position_ && exception_ == pixel(*position_) && rectangle_.contains(*exception_);
}

void WaylandInputRegion::setRectangle(const QRect& rectangle) {
  if (rectangle == rectangle_) return;
  const bool hasGrown = !rectangle_.contains(rectangle);
  const bool wasInHole = isInHole();
  rectangle_ = rectangle;
  exception_.reset();
  // It stays ours where it was, and in a hole stays the others' as long as there is one.
  if ((hasPointer_ || wasInHole) && rectangle_.contains(pixel(*position_)) == wasInHole)
    exception_ = pixel(*position_);
  if (hasGrown && !exception_) pendingSettling_ = std::max(pendingSettling_, Settling::growth);
  update();
}

// The enter that the compositor sends when the hole under a resting pointer closes comes from where
// the pointer is known to be, and so is no motion.
void WaylandInputRegion::setIgnoresMouseEvents(bool ignores) {
  if (ignores == ignoresMouseEvents_) return;
  ignoresMouseEvents_ = ignores;
  exception_.reset();
  settle();
}

void WaylandInputRegion::show() {
  isShown_ = true;
  isApplied_ = false;
  pendingSettling_ = Settling::appearance;
}

void WaylandInputRegion::hide() {
  if (position_) pointer_.setOutOfSight();
  isShown_ = false;
  hasPointer_ = false;
  position_.reset();
  exception_.reset();
  settling_ = pendingSettling_ = Settling::nothing;
  hasLeftUnsettled_ = isMainHeld_ = isRightHeld_ = false;
}

void WaylandInputRegion::applyTo(wl_surface* surface) {
  auto wanted = inputParts(rectangle_, exception_);
  if (isApplied_ && wanted == applied_) return;
  const WaylandOwned<wl_region> region(wl_compositor_create_region(connection_.compositor()));
  for (const QRect& part : wanted)
    wl_region_add(region.get(), part.x(), part.y(), part.width(), part.height());
  wl_surface_set_input_region(surface, region.get());
  applied_ = std::move(wanted);
  isApplied_ = true;
}

void WaylandInputRegion::committed() {
  if (pendingSettling_ == Settling::nothing) return;
  settling_ = std::exchange(pendingSettling_, Settling::nothing);
  handlers_.afterSettling(lifetime_.weak([this, change = ++changes_] { settled(change); }));
}

void WaylandInputRegion::settled(int change) {
  if (change != changes_) return;
  settling_ = Settling::nothing;
  // While it was hidden nobody heard the pointer leave.
  const bool hasLeftUnseen = !hasPointer_ && pointer_.isOutOfSight();
  if (std::exchange(hasLeftUnsettled_, false) || hasLeftUnseen) report(std::nullopt);
}

void WaylandInputRegion::entered(QPointF position) {
  hasPointer_ = true;
  const bool cannotHaveMoved = settling_ >= Settling::growth && !hasLeftUnsettled_ && !exception_;
  hasLeftUnsettled_ = false;
  if (cannotHaveMoved)
    rest(position);
  else if (position_ == position)
    settle();
  else
    report(position);
}

// Known from now on, and yet where it belonged before.
void WaylandInputRegion::rest(QPointF position) {
  position_ = position;
  isKnownOutside_ = false;
  pointer_.setLocation(handlers_.locate(position));
  const bool isOurs = settling_ == Settling::appearance && !ignoresMouseEvents_;
  if (!isOurs) makeHole();
  update();
}

void WaylandInputRegion::makeHole() {
  const QPoint place = pixel(*position_);
  if (!rectangle_.contains(place) || exception_ == place) return;
  exception_ = place;
  pendingSettling_ = std::max(pendingSettling_, Settling::hole);
}

void WaylandInputRegion::left() {
  hasPointer_ = false;
  isMainHeld_ = isRightHeld_ = false;
  // Some compositors look at the region when it changes, others only when the pointer moves.
  if (isInHole() && settling_ == Settling::hole) return;
  if (settling_ >= Settling::growth) {
    hasLeftUnsettled_ = true;
    return;
  }
  report(std::nullopt);
}

void WaylandInputRegion::moved(QPointF position) {
  if (position_ != position) report(position);
}

void WaylandInputRegion::button(std::uint32_t button, bool isPressed) {
  if (button == BTN_LEFT) isMainHeld_ = isPressed;
  if (button == BTN_RIGHT) isRightHeld_ = isPressed;
  if (ignoresMouseEvents_ || !position_) return;
  if (button == BTN_LEFT) handlers_.pressed(*position_, isPressed);
  if (button == BTN_RIGHT && isPressed) handlers_.menuRequested(*position_);
}

std::uint32_t WaylandInputRegion::kindOfMotion() const {
  if (isMainHeld_) return platform::eventMask::leftMouseDragged;
  if (isRightHeld_) return platform::eventMask::rightMouseDragged;
  return platform::eventMask::mouseMoved;
}

void WaylandInputRegion::report(std::optional<QPointF> position) {
  position_ = position;
  exception_.reset();
  const bool isInside = position && rectangle_.contains(pixel(*position));
  const bool isOurs = isInside && !ignoresMouseEvents_;
  pointer_.setLocation(position ? handlers_.locate(*position)
                                : handlers_.locateElsewhere(pointer_.mouseLocation()));
  // Those who are told may replace the window.
  const auto isAlive = lifetime_.weak([] { return true; });
  // Whoever was told of a place outside need not hear that the surface has been left as well.
  const bool isNews = position || !isKnownOutside_;
  isKnownOutside_ = !isInside;
  if (isNews)
    pointer_.report(
        isOurs ? WaylandPointer::Destination::ourWindow : WaylandPointer::Destination::elsewhere,
        kindOfMotion());
  if (isAlive()) handlers_.moved(position, isInside);
  if (isAlive()) settle();
}

void WaylandInputRegion::settle() {
  if (ignoresMouseEvents_ && position_) makeHole();
  update();
}

void WaylandInputRegion::update() {
  if (isShown_ && !(isApplied_ && inputParts(rectangle_, exception_) == applied_))
    handlers_.changed();
}

}  // namespace valdrix::desktop
