#include "desktop/wayland/WaylandDisplay.h"

#include <map>

#include <QtGlobal>

#include "desktop/wayland/WaylandHandles.h"

namespace valdrix::desktop {

std::string whyNoWaylandPanel() {
  // Without the name the library would take one that only happens to run, such as a window's.
  if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) return "WAYLAND_DISPLAY is not set";
  const WaylandOwned<wl_display> display(wl_display_connect(nullptr));
  if (!display) return "no compositor answers";
  using Offers = std::map<std::string, std::uint32_t>;
  static constexpr wl_registry_listener listener{
      .global = [](void* data, wl_registry*, std::uint32_t, const char* interface,
                   std::uint32_t version) { (*static_cast<Offers*>(data))[interface] = version; },
      .global_remove = [](void*, wl_registry*, std::uint32_t) {},
  };
  Offers offers;
  const WaylandOwned<wl_registry> registry(wl_display_get_registry(display.get()));
  wl_registry_add_listener(registry.get(), &listener, &offers);
  if (wl_display_roundtrip(display.get()) < 0) return "the compositor does not answer";
  if (!offers.contains(zwlr_layer_shell_v1_interface.name))
    return "the compositor has no layer shell";
  if (!offers.contains(wl_shm_interface.name) ||
      offers[wl_compositor_interface.name] < WL_SURFACE_DAMAGE_BUFFER_SINCE_VERSION)
    return "the compositor is too old";
  return {};
}

}  // namespace valdrix::desktop
