#include "desktop/x11/ScreenLayout.h"

#include <algorithm>
#include <cmath>

#include <QGuiApplication>
#include <QScreen>
#include <xcb/randr.h>

namespace valdrix::desktop {

namespace {

// Qt keeps a screen's origin in device pixels and scales only its size.
QRect deviceRectangle(const QScreen& screen) {
  const QRect geometry = screen.geometry();
  const double scale = screen.devicePixelRatio();
  return {geometry.topLeft(),
          QSize(qRound(geometry.width() * scale), qRound(geometry.height() * scale))};
}

bool canNameMonitors() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  const auto* randr = x11 ? xcb_get_extension_data(x11->connection(), &xcb_randr_id) : nullptr;
  return randr && randr->present;
}

// With no monitor left Qt shows a stand-in under the display's name (":0.0"), as it does where it
// cannot ask for monitors; then it is the real one.
bool isStandIn(const QScreen& screen) {
  return screen.geometry().isEmpty() || (screen.name().contains(u':') && canNameMonitors());
}

int distance(const QRect& rectangle, QPoint point) {
  const int dx = std::max({rectangle.left() - point.x(), 0, point.x() - rectangle.right()});
  const int dy = std::max({rectangle.top() - point.y(), 0, point.y() - rectangle.bottom()});
  return dx + dy;
}

}  // namespace

ScreenLayout ScreenLayout::current() {
  ScreenLayout layout;
  const QScreen* main = QGuiApplication::primaryScreen();
  if (!main) return layout;
  const QRect mainArea = main->geometry();
  for (const QScreen* screen : QGuiApplication::screens()) {
    if (isStandIn(*screen)) continue;
    const QRect area = screen->geometry();
    const view::Rect points{
        static_cast<double>(area.x() - mainArea.x()),
        static_cast<double>(mainArea.y() + mainArea.height() - area.y() - area.height()),
        static_cast<double>(area.width()), static_cast<double>(area.height())};
    const Entry entry{screen->name().toStdString(), deviceRectangle(*screen), points,
                      screen->devicePixelRatio(),
                      screen->refreshRate() > 1 ? screen->refreshRate() : 60};
    layout.entries.insert(screen == main ? layout.entries.begin() : layout.entries.end(), entry);
  }
  return layout;
}

const ScreenLayout::Entry* ScreenLayout::screenFor(const view::Rect& rectangle) const {
  if (entries.empty()) return nullptr;
  const view::Point anchor{rectangle.midX(), rectangle.maxY()};
  // A top edge is also the bottom edge of the screen above: the screen that it hangs from wins.
  const auto hangs = [&](const Entry& entry) {
    return entry.points.contains(anchor) && anchor.y > entry.points.minY();
  };
  const auto found = std::find_if(entries.begin(), entries.end(), hangs);
  return found == entries.end() ? &entries.front() : &*found;
}

QRect ScreenLayout::toDevice(const view::Rect& rectangle, const Entry& entry) {
  const double left = (rectangle.minX() - entry.points.minX()) * entry.scale;
  const double top = (entry.points.maxY() - rectangle.maxY()) * entry.scale;
  return {entry.device.left() + static_cast<int>(std::lround(left)),
          entry.device.top() + static_cast<int>(std::lround(top)),
          static_cast<int>(std::lround(rectangle.width * entry.scale)),
          static_cast<int>(std::lround(rectangle.height * entry.scale))};
}

QRect ScreenLayout::pixelsInside(const view::Rect& rectangle, const Entry& entry) {
  if (rectangle.isEmpty()) return {};
  // Keeps a pixel whose place is on the edge but for a rounding error.
  constexpr double tolerance = 1e-6;
  const auto first = [](double edge) { return static_cast<int>(std::ceil(edge - tolerance)); };
  const auto last = [](double edge) { return static_cast<int>(std::floor(edge + tolerance)); };
  const auto& points = entry.points;
  const QPoint topLeft(first((rectangle.minX() - points.minX()) * entry.scale),
                       first((points.maxY() - rectangle.maxY()) * entry.scale));
  const QPoint bottomRight(last((rectangle.maxX() - points.minX()) * entry.scale),
                           last((points.maxY() - rectangle.minY()) * entry.scale));
  return QRect(topLeft, bottomRight).translated(entry.device.topLeft());
}

view::Point ScreenLayout::toPoints(QPoint device) const {
  if (entries.empty()) return {};
  const auto nearest =
      std::min_element(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
        return distance(a.device, device) < distance(b.device, device);
      });
  return {nearest->points.minX() + (device.x() - nearest->device.left()) / nearest->scale,
          nearest->points.maxY() - (device.y() - nearest->device.top()) / nearest->scale};
}

}  // namespace valdrix::desktop
