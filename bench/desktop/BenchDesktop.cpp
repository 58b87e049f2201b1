#include "bench/desktop/BenchDesktop.h"

#include <cstdlib>
#include <cstring>

#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

namespace valdrix::bench {

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
struct FreeSymbols {
  void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

}  // namespace

bool BenchDesktop::start() {
  const auto check = [this](bool isRunning, const char* name) {
    if (!isRunning) missing_ = name;
    return isRunning;
  };
  if (!session_.start()) {
    missing_ = session_.missing();
    return false;
  }
  display_ = std::make_unique<tests::VirtualDisplay>(size);
  if (!check(display_->isRunning(), "Xvfb")) return false;
  qputenv("DISPLAY", display_->name().c_str());
  qputenv("QT_QPA_PLATFORM", "xcb");
  qputenv("XDG_SESSION_TYPE", "x11");
  if (!check(display_->startWindowManager(), "openbox")) return false;
  if (!check(display_->startCompositor(), "picom")) return false;
  showBackdrop();
  return true;
}

// The compositor takes a root picture only from programs that announce theirs.
void BenchDesktop::showBackdrop() const {
  auto* connection = display_->connection();
  const auto window = xcb_generate_id(connection);
  const std::uint32_t values[] = {backdropColor, 1};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, display_->root(), 0, 0, size.width(),
                    size.height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(connection, window);
  xcb_flush(connection);
}

std::vector<std::uint32_t> BenchDesktop::pixels(const QRect& rectangle) const {
  std::vector<std::uint32_t> colors(
      static_cast<std::size_t>(rectangle.width() * rectangle.height()));
  auto* connection = display_->connection();
  const std::unique_ptr<xcb_get_image_reply_t, Free> reply(
      xcb_get_image_reply(connection,
                          xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, display_->root(),
                                        static_cast<std::int16_t>(rectangle.x()),
                                        static_cast<std::int16_t>(rectangle.y()),
                                        static_cast<std::uint16_t>(rectangle.width()),
                                        static_cast<std::uint16_t>(rectangle.height()), ~0U),
                          nullptr));
  if (!reply) return colors;
  std::memcpy(colors.data(), xcb_get_image_data(reply.get()), colors.size() * sizeof colors[0]);
  for (auto& color : colors) color &= 0xFFFFFF;
  return colors;
}

xcb_keycode_t BenchDesktop::keyCode(xcb_keysym_t keysym) const {
  const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(
      xcb_key_symbols_alloc(display_->connection()));
  const std::unique_ptr<xcb_keycode_t, Free> codes(
      xcb_key_symbols_get_keycode(symbols.get(), keysym));
  return codes ? *codes : xcb_keycode_t{XCB_NO_SYMBOL};
}

void BenchDesktop::sendKey(xcb_keycode_t key, bool isPress) const {
  auto* connection = display_->connection();
  xcb_test_fake_input(connection, isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, XCB_CURRENT_TIME,
                      display_->root(), 0, 0, 0);
  xcb_flush(connection);
}

void BenchDesktop::tapKey(xcb_keycode_t key) const {
  sendKey(key, true);
  sendKey(key, false);
}

}  // namespace valdrix::bench
