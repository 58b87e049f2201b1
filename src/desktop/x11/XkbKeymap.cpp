#include <xkbcommon/xkbcommon-x11.h>

#include "desktop/x11/Keymap.h"

namespace valdrix::desktop {

namespace {

struct Unref {
  void operator()(xkb_context* context) const { xkb_context_unref(context); }
  void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
  void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

class XkbKeymap final : public Keymap {
 public:
  XkbKeymap(std::unique_ptr<xkb_keymap, Unref> keymap, std::unique_ptr<xkb_state, Unref> state)
      : keymap_(std::move(keymap)), state_(std::move(state)) {}

  std::vector<xcb_keysym_t> keysyms(xcb_keycode_t key) const override {
    std::vector<xcb_keysym_t> all;
    const auto layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), key);
    for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
      const auto levels = xkb_keymap_num_levels_for_key(keymap_.get(), key, layout);
      for (xkb_level_index_t level = 0; level < levels; ++level) {
        const xkb_keysym_t* symbols = nullptr;
        const int count =
            xkb_keymap_key_get_syms_by_level(keymap_.get(), key, layout, level, &symbols);
        all.insert(all.end(), symbols, symbols + count);
      }
    }
    return all;
  }

  xcb_keysym_t keysym(xcb_keycode_t key, std::uint32_t group,
                      std::uint16_t modifiers) const override {
    // The first eight modifiers of a keymap read from a server are its real ones, bit for bit.
    xkb_state_update_mask(state_.get(), modifiers, 0, 0, 0, 0, group);
    return xkb_state_key_get_one_sym(state_.get(), key);
  }

 private:
  std::unique_ptr<xkb_keymap, Unref> keymap_;
  std::unique_ptr<xkb_state, Unref> state_;
};

}  // namespace

std::unique_ptr<Keymap> readXkbKeymap(xcb_connection_t* connection) {
  const auto device = xkb_x11_get_core_keyboard_device_id(connection);
  if (device < 0) return nullptr;
  const std::unique_ptr<xkb_context, Unref> context(xkb_context_new(static_cast<xkb_context_flags>(
      XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
  if (!context) return nullptr;
  std::unique_ptr<xkb_keymap, Unref> keymap(xkb_x11_keymap_new_from_device(
      context.get(), connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap) return nullptr;
  std::unique_ptr<xkb_state, Unref> state(xkb_state_new(keymap.get()));
  if (!state) return nullptr;
  return std::make_unique<XkbKeymap>(std::move(keymap), std::move(state));
}

}  // namespace valdrix::desktop
