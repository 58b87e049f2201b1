#include "desktop/x11/X11PanelSurface.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>
#include <utility>
#include <vector>

#include <xcb/shape.h>

#include "desktop/x11/X11Manager.h"

namespace valdrix::desktop {

namespace {

struct Visual {
  xcb_visualid_t id;
  std::uint8_t depth;
};

// The visual with an alpha channel, or the screen's own, on which transparent pixels are black.
Visual chooseVisual(const xcb_screen_t& screen) {
  for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem;
       xcb_depth_next(&depths)) {
    if (depths.data->depth != 32) continue;
    for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem;
         xcb_visualtype_next(&visuals))
      if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) return {visuals.data->visual_id, 32};
  }
  return {screen.root_visual, screen.root_depth};
}

// A panel's place is much larger than what is mostly seen of it, so its memory comes from the
// system only as far as it is painted on.
QImage transparentImage(QSize size) {
  constexpr auto format = QImage::Format_ARGB32_Premultiplied;
  constexpr std::size_t bytesPerPixel = 4;
  const auto bytesPerLine = static_cast<std::size_t>(size.width()) * bytesPerPixel;
  auto* const pixels =
      static_cast<uchar*>(std::calloc(static_cast<std::size_t>(size.height()), bytesPerLine));
  if (!pixels) return {};
  return {pixels, size.width(), size.height(), static_cast<qsizetype>(bytesPerLine),
          format, std::free,    pixels};
}

}  // namespace

X11PanelSurface::X11PanelSurface(X11Connection& connection, X11Manager& compositing, bool hasShadow)
    : connection_(connection), compositing_(compositing) {
  if (connection_.isUsable()) create(hasShadow);
}

X11PanelSurface::~X11PanelSurface() {
  if (!window_) return;
  xcb_destroy_window(connection_.get(), window_);
  xcb_free_gc(connection_.get(), graphics_);
  xcb_free_colormap(connection_.get(), colormap_);
  connection_.flush();
}

void X11PanelSurface::create(bool hasShadow) {
  auto* connection = connection_.get();
  const auto& screen = connection_.screen();
  const Visual visual = chooseVisual(screen);
  colormap_ = xcb_generate_id(connection);
  xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap_, screen.root, visual.id);
  window_ = xcb_generate_id(connection);
  // A background of nothing at all, so that no garbage shows before the first frame; and a picture
  // that stays where it is on the screen when the window becomes another size around it.
  const std::uint32_t values[] = {
      0, 0, XCB_GRAVITY_STATIC, 1, XCB_EVENT_MASK_EXPOSURE | pointerEvents, colormap_};
  xcb_create_window(connection, visual.depth, window_, screen.root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                        XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                    values);
  graphics_ = xcb_generate_id(connection);
  xcb_create_gc(connection, graphics_, window_, 0, nullptr);
  depth_ = visual.depth;
  setProperties(hasShadow);
}

// Nobody manages the window, but compositing managers and tools that list windows read these.
void X11PanelSurface::setProperties(bool hasShadow) {
  const auto setText = [&](xcb_atom_t property, xcb_atom_t type, std::string_view text) {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
  };
  const auto setNumber = [&](std::string_view property, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_,
                        connection_.atom(property), type, 32, 1, &value);
  };
  setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string_view("valdrix\0valdrix\0", 16));
  setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "valdrix");
  setText(connection_.atom("_NET_WM_NAME"), connection_.atom("UTF8_STRING"), "valdrix");
  setNumber("_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(getpid()));
  setNumber("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, connection_.atom("_NET_WM_WINDOW_TYPE_DOCK"));
  if (!hasShadow) setNumber("_COMPTON_SHADOW", XCB_ATOM_CARDINAL, 0);
}

bool X11PanelSurface::isCutOut() const { return !compositing_.isActive(); }

void X11PanelSurface::setFrame(const QRect& frame) {
  frame_ = frame;
  picture_ = transparentImage(frame.size());
  shape_ = {};
  place_ = {};
  configure();
}

void X11PanelSurface::show() {
  isShown_ = true;
  xcb_map_window(connection_.get(), window_);
}

void X11PanelSurface::hide() {
  isShown_ = false;
  xcb_unmap_window(connection_.get(), window_);
}

void X11PanelSurface::stackBehind(xcb_window_t sibling) {
  const std::uint32_t values[] = {sibling, XCB_STACK_MODE_BELOW};
  xcb_configure_window(connection_.get(), window_,
                       XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
}

bool X11PanelSurface::follow(const QRect& painted, const QRect& target) {
  return extent_.follow(painted, target) && configure();
}

bool X11PanelSurface::settle(const QRect& painted, const QRect& target) {
  return extent_.settle(painted, target) && configure();
}

bool X11PanelSurface::configure() {
  const QRect whole(QPoint(), frame_.size());
  const QRect place = isCutOut() ? whole : extent_.rectangle().intersected(whole);
  if (place.isEmpty() || place == place_) return false;
  place_ = place;
  const QRect onRoot = this->place();
  const std::uint32_t values[] = {
      static_cast<std::uint32_t>(onRoot.x()), static_cast<std::uint32_t>(onRoot.y()),
      static_cast<std::uint32_t>(onRoot.width()), static_cast<std::uint32_t>(onRoot.height())};
  xcb_configure_window(connection_.get(), window_,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       values);
  return true;
}

void X11PanelSurface::present(const QRegion& area) {
  const QRect rows = area.boundingRect();
  // Remembered also while a compositing manager makes it needless: it may go at any time.
  const bool isNewShape = shape_.update(picture_, rows.top(), rows.bottom() + 1);
  if (isNewShape && isCutOut()) applyShape();
  for (const QRect& part : area) put(part.intersected(place_));
  connection_.flush();
}

void X11PanelSurface::updateOutline() {
  configure();
  applyShape();
  connection_.flush();
}

void X11PanelSurface::applyShape() {
  auto* connection = connection_.get();
  if (!isCutOut()) {
    xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0,
                   XCB_PIXMAP_NONE);
    return;
  }
  std::vector<xcb_rectangle_t> parts;
  for (const QRect& part : shape_.rectangles())
    parts.push_back({static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                     static_cast<std::uint16_t>(part.width()),
                     static_cast<std::uint16_t>(part.height())});
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                       XCB_CLIP_ORDERING_YX_BANDED, window_, 0, 0,
                       static_cast<std::uint32_t>(parts.size()), parts.data());
}

// Sends a part of the picture, in as many requests as the server's limit on their length asks for.
void X11PanelSurface::put(const QRect& area) {
  if (area.isEmpty() || !isShown_) return;
  const bool isWhole = area.width() == picture_.width();
  const QImage part = isWhole ? picture_ : picture_.copy(area);
  auto* connection = connection_.get();
  const auto limit = static_cast<qsizetype>(xcb_get_maximum_request_length(connection)) * 4 - 64;
  const int rows = static_cast<int>(std::max<qsizetype>(1, limit / part.bytesPerLine()));
  const int first = isWhole ? area.top() : 0;
  const QPoint inWindow = area.topLeft() - place_.topLeft();
  for (int done = 0; done < area.height(); done += rows) {
    const int count = std::min(rows, area.height() - done);
    xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, graphics_,
                  static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(count),
                  static_cast<std::int16_t>(inWindow.x()),
                  static_cast<std::int16_t>(inWindow.y() + done), 0, depth_,
                  static_cast<std::uint32_t>(part.bytesPerLine() * count),
                  part.constScanLine(first + done));
  }
}

}  // namespace valdrix::desktop
