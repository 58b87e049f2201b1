#include "desktop/x11/Keymap.h"
#include "desktop/x11/XcbHandles.h"

namespace valdrix::desktop {

namespace {

class CoreKeymap final : public Keymap {
 public:
  CoreKeymap(xcb_keycode_t first, XcbOwned<xcb_get_keyboard_mapping_reply_t> reply)
      : first_(first), reply_(std::move(reply)) {}

  std::vector<xcb_keysym_t> keysyms(xcb_keycode_t key) const override {
    std::vector<xcb_keysym_t> all;
    for (int column = 0; column < reply_->keysyms_per_keycode; ++column) {
      if (const auto symbol = at(key, column)) all.push_back(symbol);
    }
    return all;
  }

  xcb_keysym_t keysym(xcb_keycode_t key, std::uint32_t, std::uint16_t modifiers) const override {
    const xcb_keysym_t shifted = (modifiers & XCB_MOD_MASK_SHIFT) ? at(key, 1) : 0;
    return shifted ? shifted : at(key, 0);
  }

 private:
  xcb_keysym_t at(xcb_keycode_t key, int column) const {
    const int index = (key - first_) * reply_->keysyms_per_keycode + column;
    const bool isInside = key >= first_ && column < reply_->keysyms_per_keycode &&
                          index < xcb_get_keyboard_mapping_keysyms_length(reply_.get());
    return isInside ? xcb_get_keyboard_mapping_keysyms(reply_.get())[index] : XCB_NO_SYMBOL;
  }

  xcb_keycode_t first_;
  XcbOwned<xcb_get_keyboard_mapping_reply_t> reply_;
};

}  // namespace

std::unique_ptr<Keymap> readCoreKeymap(xcb_connection_t* connection) {
  if (xcb_connection_has_error(connection)) return nullptr;
  const auto* setup = xcb_get_setup(connection);
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  auto reply = xcbOwned(xcb_get_keyboard_mapping_reply(
      connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr));
  if (!reply) return nullptr;
  return std::make_unique<CoreKeymap>(setup->min_keycode, std::move(reply));
}

}  // namespace valdrix::desktop
