#include "desktop/x11/X11PanelWindow.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <vector>

#include <xcb/shape.h>

#include "desktop/x11/X11Cursor.h"
#include "desktop/x11/X11Manager.h"
#include "desktop/x11/X11Screens.h"
#include "view/HostingView.h"

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

// The window is much larger than what is mostly seen of it, so its memory comes from the system
// only as far as it is painted on.
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

X11PanelWindow::X11PanelWindow(const X11PanelServices& services, const view::Rect& contentRectangle,
                               const platform::PanelConfiguration& configuration)
    : services_(services),
      contentRectangle_(contentRectangle),
      trackedRectangle_{0, 0, contentRectangle.width, contentRectangle.height},
      painter_(services.textMetrics),
      pacer_([this] { drawFrame(); }),
      inputRegion_(
          services.connection, services.pointer,
          {[this](QPoint position, bool isInside) { pointerMoved(position, isInside); },
           [this](QPoint position, bool isPressed) { pointerPressed(position, isPressed); },
           [this](QPoint position) { requestMenu(position); }}),
      stackingGuard_(services.connection, [this] { raise(); }) {
  if (!services_.connection.isUsable()) return;
  create(configuration);
  inputRegion_.setIgnoresMouseEvents(configuration.ignoresMouseEvents);
  place();
  eventHandler_ = services_.connection.addEventHandler(
      [this](const xcb_generic_event_t& event) { handle(event); });
  screensObserver_ = services_.screens.observeChanges([this] { place(); });
  compositingObserver_ = services_.compositing.observeChanges([this] { applyShape(); });
  cursorObserver_ = services_.cursor.observeChanges([this] { updateCursor(); });
}

X11PanelWindow::~X11PanelWindow() {
  setContentView(nullptr);
  auto* connection = services_.connection.get();
  if (!window_) return;
  xcb_destroy_window(connection, window_);
  xcb_free_gc(connection, graphics_);
  xcb_free_colormap(connection, colormap_);
  services_.connection.flush();
}

void X11PanelWindow::create(const platform::PanelConfiguration& configuration) {
  auto* connection = services_.connection.get();
  const auto& screen = services_.connection.screen();
  const Visual visual = chooseVisual(screen);
  colormap_ = xcb_generate_id(connection);
  xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap_, screen.root, visual.id);
  window_ = xcb_generate_id(connection);
  // A background of nothing at all, so that no garbage shows before the first frame.
  const std::uint32_t values[] = {0, 0, 1, XCB_EVENT_MASK_EXPOSURE, colormap_};
  xcb_create_window(connection, visual.depth, window_, screen.root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                        XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                    values);
  graphics_ = xcb_generate_id(connection);
  xcb_create_gc(connection, graphics_, window_, 0, nullptr);
  depth_ = visual.depth;
  // The input region takes the pointer in its stead.
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       window_, 0, 0, 0, nullptr);
  setProperties(configuration.hasShadow);
}

// Nobody manages the window, but compositing managers and tools that list windows read these.
void X11PanelWindow::setProperties(bool hasShadow) {
  auto& connection = services_.connection;
  const auto setText = [&](xcb_atom_t property, xcb_atom_t type, std::string_view text) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
  };
  const auto setNumber = [&](std::string_view property, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window_, connection.atom(property),
                        type, 32, 1, &value);
  };
  setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string_view("valdrix\0valdrix\0", 16));
  setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "valdrix");
  setText(connection.atom("_NET_WM_NAME"), connection.atom("UTF8_STRING"), "valdrix");
  setNumber("_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(getpid()));
  setNumber("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, connection.atom("_NET_WM_WINDOW_TYPE_DOCK"));
  if (!hasShadow) setNumber("_COMPTON_SHADOW", XCB_ATOM_CARDINAL, 0);
}

// Finds the window's place on the screens as they are now.
void X11PanelWindow::place() {
  const auto layout = ScreenLayout::current();
  const auto* screen = layout.screenFor(contentRectangle_);
  if (!screen) return;
  const QRect frame = ScreenLayout::toDevice(contentRectangle_, *screen);
  if (hasScreen_ && *screen == screen_ && frame == frame_) return;
  hasScreen_ = true;
  screen_ = *screen;
  frame_ = frame;
  pacer_.setRefreshRate(screen_.refreshRate);
  const std::uint32_t values[] = {
      static_cast<std::uint32_t>(frame.x()), static_cast<std::uint32_t>(frame.y()),
      static_cast<std::uint32_t>(frame.width()), static_cast<std::uint32_t>(frame.height())};
  xcb_configure_window(services_.connection.get(), window_,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                           XCB_CONFIG_WINDOW_HEIGHT,
                       values);
  inputRegion_.setFrame(frame);
  applyTrackedRectangle();
  image_ = transparentImage(frame.size());
  painter_.setPictures(frame.size(), screen_.scale);
  if (isShown_) drawFrame();
}

void X11PanelWindow::setContentView(view::HostingView* content) {
  leaveContent();
  if (content_) content_->setOnNeedsFrame({});
  content_ = content;
  painter_.setContent(content);
  pacer_.cancel();
  if (!content_) return;
  content_->setOnNeedsFrame([this] {
    if (isShown_) pacer_.request();
  });
  if (isShown_) pacer_.request();
}

void X11PanelWindow::orderFrontRegardless() {
  if (!window_ || !hasScreen_) return;
  isShown_ = true;
  drawFrame();
  raise();
  xcb_map_window(services_.connection.get(), window_);
  inputRegion_.show();
  put(painter_.inked());
  applyTrackedRectangle();
  services_.connection.flush();
}

void X11PanelWindow::raise() {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(services_.connection.get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  inputRegion_.raise();
  services_.connection.flush();
}

void X11PanelWindow::orderOut() {
  if (!isShown_) return;
  isShown_ = false;
  pacer_.cancel();
  stackingGuard_.stop();
  inputRegion_.hide();
  leaveContent();
  xcb_unmap_window(services_.connection.get(), window_);
  services_.connection.flush();
}

bool X11PanelWindow::ignoresMouseEvents() const { return inputRegion_.ignoresMouseEvents(); }

void X11PanelWindow::setIgnoresMouseEvents(bool ignores) {
  if (ignores) leaveContent();
  inputRegion_.setIgnoresMouseEvents(ignores);
}

void X11PanelWindow::setTrackedRectangle(const view::Rect& rectangle) {
  trackedRectangle_ = rectangle;
  applyTrackedRectangle();
}

void X11PanelWindow::applyTrackedRectangle() {
  if (!hasScreen_) return;
  const view::Rect onScreen{contentRectangle_.minX() + trackedRectangle_.x,
                            contentRectangle_.maxY() - trackedRectangle_.maxY(),
                            trackedRectangle_.width, trackedRectangle_.height};
  const QRect pixels = ScreenLayout::pixelsInside(onScreen, screen_);
  inputRegion_.setRectangle(pixels);
  if (isShown_) stackingGuard_.start(window_, inputRegion_.window(), pixels, screen_.device);
}

void X11PanelWindow::drawFrame() {
  const QRegion area = painter_.prepareFrame(1 / screen_.refreshRate);
  if (area.isEmpty()) return;
  painter_.paint(image_, area);
  ++framesDrawn_;
  ++services_.framesDrawn;
  present(area);
}

void X11PanelWindow::present(const QRegion& area) {
  const QRect rows = area.boundingRect();
  // Remembered also while a compositing manager makes it needless: it may go at any time.
  const bool isNewShape = shape_.update(image_, rows.top(), rows.bottom() + 1);
  if (isNewShape && !services_.compositing.isActive()) applyShape();
  for (const QRect& part : area) put(part);
  services_.connection.flush();
}

void X11PanelWindow::applyShape() {
  auto* connection = services_.connection.get();
  if (services_.compositing.isActive()) {
    xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0,
                   XCB_PIXMAP_NONE);
  } else {
    std::vector<xcb_rectangle_t> parts;
    for (const QRect& part : shape_.rectangles())
      parts.push_back({static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                       static_cast<std::uint16_t>(part.width()),
                       static_cast<std::uint16_t>(part.height())});
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_YX_BANDED, window_, 0, 0,
                         static_cast<std::uint32_t>(parts.size()), parts.data());
  }
  services_.connection.flush();
}

// Sends a part of the picture, in as many requests as the server's limit on their length asks for.
void X11PanelWindow::put(const QRect& area) {
  if (area.isEmpty() || !isShown_) return;
  const bool isWhole = area.width() == image_.width();
  const QImage part = isWhole ? image_ : image_.copy(area);
  auto* connection = services_.connection.get();
  const auto limit = static_cast<qsizetype>(xcb_get_maximum_request_length(connection)) * 4 - 64;
  const int rows = static_cast<int>(std::max<qsizetype>(1, limit / part.bytesPerLine()));
  const int first = isWhole ? area.top() : 0;
  for (int done = 0; done < area.height(); done += rows) {
    const int count = std::min(rows, area.height() - done);
    xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, graphics_,
                  static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(count),
                  static_cast<std::int16_t>(area.left()),
                  static_cast<std::int16_t>(area.top() + done), 0, depth_,
                  static_cast<std::uint32_t>(part.bytesPerLine() * count),
                  part.constScanLine(first + done));
  }
}

void X11PanelWindow::handle(const xcb_generic_event_t& event) {
  if (eventType(event) != XCB_EXPOSE) return;
  const auto& expose = eventAs<xcb_expose_event_t>(event);
  if (expose.window != window_) return;
  // The server has cleared the rest.
  put(QRect(expose.x, expose.y, expose.width, expose.height).intersected(painter_.inked()));
}

view::Point X11PanelWindow::toContent(QPoint position) const {
  const view::Rect frame = content_->frame();
  return {(position.x() - frame_.left()) / screen_.scale - frame.x,
          (position.y() - frame_.top()) / screen_.scale - frame.y};
}

void X11PanelWindow::pointerMoved(QPoint position, bool isInside) {
  if (!content_) return;
  if (isInside && !ignoresMouseEvents()) {
    isPointerInContent_ = true;
    content_->pointerMoved(toContent(position));
  } else {
    leaveContent();
  }
}

void X11PanelWindow::pointerPressed(QPoint position, bool isPressed) {
  if (!content_) return;
  if (isPressed)
    content_->pointerPressed(toContent(position));
  else
    content_->pointerReleased(toContent(position));
}

void X11PanelWindow::requestMenu(QPoint position) {
  if (!services_.onMenuRequested) return;
  const QPoint origin = screen_.device.topLeft();
  services_.onMenuRequested(origin + (position - origin) / screen_.scale);
}

void X11PanelWindow::leaveContent() {
  if (std::exchange(isPointerInContent_, false) && content_) content_->pointerExited();
}

void X11PanelWindow::updateCursor() { inputRegion_.setCursor(services_.cursor.shape()); }

}  // namespace valdrix::desktop
