#include "tests/x11/X11DeskWorld.h"

#include <algorithm>
#include <array>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>

#include "tests/support/WaitFor.h"
#include "tests/x11/SimulatedDeskWorld.h"

namespace valdrix::tests {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
  const auto reply = desktop::xcbOwned(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
      nullptr));
  return reply->atom;
}

void sync(xcb_connection_t* connection) {
  (void)desktop::xcbOwned(
      xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

ForeignWindow::ForeignWindow(const QRect& frame, const Options& options)
    : connection_(xcb_connect(display().name().c_str(), nullptr), &xcb_disconnect),
      window_(xcb_generate_id(connection_.get())) {
  auto* connection = connection_.get();
  const std::uint32_t values[] = {options.color.rgb() & 0xFFFFFF, options.isManaged ? 0U : 1U,
                                  XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window_, display().root(),
                    static_cast<std::int16_t>(frame.x()), static_cast<std::int16_t>(frame.y()),
                    static_cast<std::uint16_t>(frame.width()),
                    static_cast<std::uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  const auto setAtom = [&](const char* property, const std::string& value) {
    const auto code = atom(connection, value);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window_, atom(connection, property),
                        XCB_ATOM_ATOM, 32, 1, &code);
  };
  if (options.isFullscreen) setAtom("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
  if (options.type)
    setAtom("_NET_WM_WINDOW_TYPE", std::string("_NET_WM_WINDOW_TYPE_") + options.type);
  if (options.hasManagedChild) {
    const auto child = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, child, window_, 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const std::uint32_t normal[] = {1, XCB_WINDOW_NONE};
    const auto state = atom(connection, "WM_STATE");
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, child, state, state, 32, 2, normal);
  }
  xcb_map_window(connection, window_);
  sync(connection);
}

ForeignWindow::~ForeignWindow() {
  xcb_destroy_window(connection_.get(), window_);
  sync(connection_.get());
}

void ForeignWindow::moveTo(QPoint position) {
  const std::uint32_t values[] = {static_cast<std::uint32_t>(position.x()),
                                  static_cast<std::uint32_t>(position.y())};
  xcb_configure_window(connection_.get(), window_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                       values);
  sync(connection_.get());
}

int ForeignWindow::presses() {
  sync(connection_.get());
  while (const auto event = desktop::xcbOwned(xcb_poll_for_event(connection_.get())))
    if (desktop::eventType(*event) == XCB_BUTTON_PRESS) ++presses_;
  return presses_;
}

X11DeskWorld::X11DeskWorld(Company company) {
  if (company == Company::windowManager && !display().startWindowManager())
    ADD_FAILURE() << "no window manager";
  if (company == Company::compositor && !display().startCompositor())
    ADD_FAILURE() << "no compositing manager";
  background_ = std::make_unique<ForeignWindow>(QRect(QPoint(), display().size()));
  display().movePointer({1, display().size().height() - 2});
  desktop_ = std::make_unique<desktop::X11Desktop>(textMetrics_, housings_);
  settle();
}

X11DeskWorld::~X11DeskWorld() {
  removeMonitors();
  desktop_.reset();
  background_.reset();
  if (display().hasCompositor()) display().stopCompositor();
  display().stopWindowManager();
  QCoreApplication::processEvents();
}

view::HostingView::Services X11DeskWorld::services() {
  return {.textMetrics = textMetrics_,
          .now = [this] { return runLoop_.now(); },
          .scheduleRepeatingTimer =
              [this](double interval, std::function<void()> block) {
                return runLoop_.scheduleTimer(interval, true, std::move(block));
              }};
}

QPoint X11DeskWorld::toDevice(view::Point point) const {
  const auto layout = desktop::ScreenLayout::current();
  const auto* screen = layout.screenFor({point.x, point.y - 1, 0, 1});
  return {
      screen->device.left() + static_cast<int>((point.x - screen->points.minX()) * screen->scale),
      screen->device.top() + static_cast<int>((screen->points.maxY() - point.y) * screen->scale)};
}

void X11DeskWorld::move(view::Point to) {
  display().movePointer(toDevice(to));
  settle();
}

void X11DeskWorld::drag(const std::vector<view::Point>& path, bool withRightButton) {
  const std::uint8_t button = withRightButton ? 3 : 1;
  display().press(button);
  settle();
  for (const auto& point : path) move(point);
  display().release(button);
  settle();
}

bool X11DeskWorld::clickReachesDesktop() {
  const int before = background_->presses();
  display().click();
  settle();
  return background_->presses() > before;
}

// The server answers in order: with the answer to a question, all events before it are here. Three
// times, for what the events make us ask of it.
void X11DeskWorld::settle() {
  for (int turn = 0; turn < 3; ++turn) {
    (void)desktop_->pointer.query();
    QCoreApplication::processEvents();
  }
}

bool X11DeskWorld::runUntilStill(view::HostingView& content) {
  const bool isStill = waitFor([&] { return !content.needsFrame(); });
  settle();
  return isStill;
}

std::uint64_t X11DeskWorld::framesDrawn(platform::PanelWindow& window) {
  return dynamic_cast<desktop::X11PanelWindow&>(window).framesDrawn();
}

void X11DeskWorld::setMonitors(const std::vector<Monitor>& monitors) {
  const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
  const auto old = std::exchange(monitors_, monitors);
  const auto isIn = [](const std::vector<Monitor>& list, const Monitor& monitor) {
    return std::find(list.begin(), list.end(), monitor) != list.end();
  };
  for (const auto& monitor : old)
    if (!isIn(monitors, monitor)) (void)display().run({"xrandr", "--delmonitor", monitor.name});
  switchOutput(!monitors.empty());
  int x = 0;
  for (const auto& monitor : monitors) {
    const int width = static_cast<int>(monitor.width * scale);
    const int height = static_cast<int>(monitor.height * scale);
    const auto place = std::to_string(width) + "/200x" + std::to_string(height) + "/200+" +
                       std::to_string(x) + "+0";
    // The only real output belongs to the main screen; the others are monitors without one.
    const auto arguments = x == 0 ? std::array{"*" + monitor.name, place, std::string("screen")}
                                  : std::array{monitor.name, place, std::string("none")};
    if (!isIn(old, monitor))
      (void)display().run({"xrandr", "--setmonitor", arguments[0], arguments[1], arguments[2]});
    x += width;
  }
  EXPECT_TRUE(waitFor([&] { return screens().screens().size() == monitors.size(); }));
  settle();
}

void X11DeskWorld::switchOutput(bool isOn) {
  if (isOn == isOutputOn_) return;
  isOutputOn_ = isOn;
  // Complains of the framebuffer, which cannot be without size, and yet does it.
  (void)display().run({"xrandr", "--output", "screen", isOn ? "--auto" : "--off"});
}

void X11DeskWorld::removeMonitors() {
  if (monitors_.empty() && isOutputOn_) return;
  switchOutput(true);
  for (const auto& monitor : monitors_)
    (void)display().run({"xrandr", "--delmonitor", monitor.name});
  const auto expected = display().size();
  (void)waitFor([&] {
    const auto screens = QGuiApplication::screens();
    return screens.size() == 1 &&
           screens[0]->geometry().width() * screens[0]->devicePixelRatio() == expected.width();
  });
}

std::vector<std::string> deskWorldNames() {
  return {"simulated", "x11", "x11WithCompositor", "x11WithWindowManager"};
}
std::vector<std::string> dragWorldNames() { return deskWorldNames(); }
std::vector<std::string> screenWorldNames() { return {"simulated", "x11"}; }

std::unique_ptr<DeskWorld> makeDeskWorld(const std::string& name) {
  using Company = X11DeskWorld::Company;
  if (name == "simulated") return std::make_unique<SimulatedDeskWorld>();
  if (name == "x11WithCompositor") return std::make_unique<X11DeskWorld>(Company::compositor);
  if (name == "x11WithWindowManager") return std::make_unique<X11DeskWorld>(Company::windowManager);
  return std::make_unique<X11DeskWorld>();
}

}  // namespace valdrix::tests
