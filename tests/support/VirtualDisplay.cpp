#include "tests/support/VirtualDisplay.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <poll.h>

#include <xcb/composite.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

namespace valdrix::tests {

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

template <class T>
Reply<T> owned(T* reply) {
  return Reply<T>(reply);
}

std::string makeTemporaryFolder() {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "valdrix-display-XXXXXX").string();
  return mkdtemp(pattern.data()) ? pattern : std::string();
}

}  // namespace

VirtualDisplay::VirtualDisplay(QSize size) : home_(makeTemporaryFolder()) {
  const auto screen = std::to_string(size.width()) + "x" + std::to_string(size.height()) + "x24";
  server_ = std::make_unique<SpawnedProgram>(
      std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", screen, "-nolisten",
                               "tcp", "-noreset"},
      std::vector<std::string>{"HOME=" + home_}, true);
  if (const auto number = server_->readLine()) name_ = ":" + *number;
  connection_.reset(xcb_connect(name_.c_str(), nullptr));
  if (xcb_connection_has_error(connection_.get())) return;
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &events);
  owned(xcb_xfixes_query_version_reply(connection_.get(),
                                       xcb_xfixes_query_version(connection_.get(), 2, 0), nullptr));
  owned(xcb_composite_query_version_reply(
      connection_.get(), xcb_composite_query_version(connection_.get(), 0, 2), nullptr));
  xcb_xfixes_select_selection_input(connection_.get(), root_, atom("_NET_WM_CM_S0"),
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

bool VirtualDisplay::await(const std::function<bool()>& condition, int milliseconds) const {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (!condition()) {
    const auto rest =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (rest.count() <= 0 || !awaitsEvent(static_cast<int>(rest.count()))) return false;
  }
  return true;
}

VirtualDisplay::~VirtualDisplay() {
  compositor_.reset();
  windowManager_.reset();
  connection_.reset();
  server_.reset();
  std::error_code ignored;
  if (!home_.empty()) std::filesystem::remove_all(home_, ignored);
}

bool VirtualDisplay::isRunning() {
  return server_->isRunning() && !xcb_connection_has_error(connection_.get());
}

std::vector<std::string> VirtualDisplay::variables() const {
  return {"DISPLAY=" + name_, "HOME=" + home_, "QT_QPA_PLATFORM=xcb", "XDG_SESSION_TYPE=x11",
          "XDG_CONFIG_HOME=" + home_};
}

QProcessEnvironment VirtualDisplay::environment() const {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
  environment.insert(QStringLiteral("DISPLAY"), QString::fromStdString(name_));
  environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
  environment.insert(QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("x11"));
  return environment;
}

QSize VirtualDisplay::size() const {
  const auto geometry = owned(xcb_get_geometry_reply(
      connection_.get(), xcb_get_geometry(connection_.get(), root_), nullptr));
  return geometry ? QSize(geometry->width, geometry->height) : QSize();
}

xcb_atom_t VirtualDisplay::atom(const std::string& atomName) const {
  const auto reply = owned(xcb_intern_atom_reply(
      connection_.get(),
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(atomName.size()),
                      atomName.c_str()),
      nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool VirtualDisplay::hasWindowManager() const {
  const auto property = owned(xcb_get_property_reply(
      connection_.get(),
      xcb_get_property(connection_.get(), 0, root_, atom("_NET_SUPPORTING_WM_CHECK"),
                       XCB_ATOM_WINDOW, 0, 1),
      nullptr));
  return property && property->value_len == 1;
}

// A window manager announces itself early, and openbox sleeps over what is asked of it between then
// and the end of its start. Only a window that it has given a state proves that it works.
bool VirtualDisplay::takesWindowsIn() const {
  const auto window = xcb_generate_id(connection_.get());
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                    &events);
  xcb_map_window(connection_.get(), window);
  const bool isTakenIn = await(
      [&] {
        const auto state = owned(xcb_get_property_reply(
            connection_.get(),
            xcb_get_property(connection_.get(), 0, window, atom("WM_STATE"), XCB_ATOM_ANY, 0, 1),
            nullptr));
        return state && state->value_len == 1;
      },
      200);
  xcb_destroy_window(connection_.get(), window);
  return isTakenIn;
}

bool VirtualDisplay::hasCompositor() const {
  const auto owner = owned(xcb_get_selection_owner_reply(
      connection_.get(), xcb_get_selection_owner(connection_.get(), atom("_NET_WM_CM_S0")),
      nullptr));
  return owner && owner->owner != XCB_WINDOW_NONE;
}

bool VirtualDisplay::startWindowManager() {
  windowManager_ =
      std::make_unique<SpawnedProgram>(std::vector<std::string>{"openbox"}, variables());
  if (!await([this] { return hasWindowManager(); })) return false;
  // The first may be one of those that it finds at the end of its start.
  constexpr int mostTries = 50;
  for (int tries = 0; tries < mostTries; ++tries)
    if (takesWindowsIn() && takesWindowsIn()) return awaitRest();
  return false;
}

// Nothing says that another program has done all that it does at its start.
bool VirtualDisplay::awaitRest() const {
  constexpr int restMilliseconds = 20;
  const auto select = [this](std::uint32_t events) {
    xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &events);
  };
  select(XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < deadline && awaitsEvent(restMilliseconds))
    ;
  select(XCB_EVENT_MASK_PROPERTY_CHANGE);
  while (owned(xcb_poll_for_event(connection_.get())))
    ;
  return std::chrono::steady_clock::now() < deadline;
}

bool VirtualDisplay::awaitsEvent(int milliseconds) const {
  // An event that came with the answer to a question is not seen at the socket any more.
  if (owned(xcb_poll_for_event(connection_.get()))) return true;
  xcb_flush(connection_.get());
  pollfd socket{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
  return poll(&socket, 1, milliseconds) > 0;
}

void VirtualDisplay::stopWindowManager() { windowManager_.reset(); }

bool VirtualDisplay::startCompositor() {
  compositor_ = std::make_unique<SpawnedProgram>(
      std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
      variables());
  return await([this] { return hasCompositor(); }) && paintsWindows() && awaitRest();
}

// It takes its selection early; only from when it paints the windows does the server keep pictures
// of them.
bool VirtualDisplay::paintsWindows() const {
  auto* const connection = connection_.get();
  const auto window = xcb_generate_id(connection);
  const std::uint32_t isUnmanaged = 1;
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                    &isUnmanaged);
  xcb_map_window(connection, window);
  const auto hasPicture = [&] {
    const auto picture = xcb_generate_id(connection);
    const auto request = xcb_composite_name_window_pixmap_checked(connection, window, picture);
    if (owned(xcb_request_check(connection, request))) return false;
    xcb_free_pixmap(connection, picture);
    return true;
  };
  constexpr int milliseconds = 10;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  bool isPainted = hasPicture();
  while (!isPainted && std::chrono::steady_clock::now() < deadline) {
    static_cast<void>(awaitsEvent(milliseconds));
    isPainted = hasPicture();
  }
  xcb_destroy_window(connection, window);
  return isPainted;
}

void VirtualDisplay::stopCompositor() {
  compositor_.reset();
  static_cast<void>(await([this] { return !hasCompositor(); }));
}

void VirtualDisplay::fake(std::uint8_t type, std::uint8_t detail, QPoint at) {
  xcb_test_fake_input(connection_.get(), type, detail, XCB_CURRENT_TIME, root_,
                      static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 0);
  // A reply means that the server has handled what came before it.
  owned(xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()),
                                  nullptr));
}

void VirtualDisplay::movePointer(QPoint to) { fake(XCB_MOTION_NOTIFY, 0, to); }

QPoint VirtualDisplay::pointer() const {
  const auto reply = owned(xcb_query_pointer_reply(
      connection_.get(), xcb_query_pointer(connection_.get(), root_), nullptr));
  return reply ? QPoint(reply->root_x, reply->root_y) : QPoint();
}

void VirtualDisplay::press(std::uint8_t button) { fake(XCB_BUTTON_PRESS, button); }
void VirtualDisplay::release(std::uint8_t button) { fake(XCB_BUTTON_RELEASE, button); }

void VirtualDisplay::click(std::uint8_t button) {
  press(button);
  release(button);
}

bool VirtualDisplay::fakeKey(std::uint8_t type, xcb_keysym_t keysym) {
  struct FreeSymbols {
    void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
  };
  const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(
      xcb_key_symbols_alloc(connection_.get()));
  const auto codes = owned(xcb_key_symbols_get_keycode(symbols.get(), keysym));
  if (!codes || *codes == XCB_NO_SYMBOL) return false;
  fake(type, *codes);
  return true;
}

bool VirtualDisplay::pressKey(xcb_keysym_t keysym) { return fakeKey(XCB_KEY_PRESS, keysym); }
bool VirtualDisplay::releaseKey(xcb_keysym_t keysym) { return fakeKey(XCB_KEY_RELEASE, keysym); }

bool VirtualDisplay::tapKey(xcb_keysym_t keysym) { return pressKey(keysym) && releaseKey(keysym); }

QImage VirtualDisplay::screenshot() const {
  const QSize area = size();
  const auto reply =
      owned(xcb_get_image_reply(connection_.get(),
                                xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root_,
                                              0, 0, static_cast<std::uint16_t>(area.width()),
                                              static_cast<std::uint16_t>(area.height()), ~0U),
                                nullptr));
  if (!reply) return {};
  return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(), QImage::Format_RGB32)
      .copy();
}

int VirtualDisplay::run(std::vector<std::string> arguments) {
  SpawnedProgram program(std::move(arguments), variables());
  return program.wait();
}

}  // namespace valdrix::tests
