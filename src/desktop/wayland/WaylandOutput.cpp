#include "desktop/wayland/WaylandOutput.h"

#include <utility>

namespace valdrix::desktop {

namespace {

constexpr std::uint32_t outputVersion = 4;

WaylandOutput& self(void* data) { return *static_cast<WaylandOutput*>(data); }

}  // namespace

double WaylandOutput::Description::scale() const {
  const int width = isOnSide ? mode.height() : mode.width();
  return width > 0 && logical.width() > 0 ? static_cast<double>(width) / logical.width()
                                          : bufferScale;
}

const wl_output_listener WaylandOutput::outputListener{
    .geometry =
        [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t,
           std::int32_t, const char*, const char*, std::int32_t transform) {
          self(data).position_ = {x, y};
          // The odd ones are those that turn by a quarter or three.
          self(data).pending_.isOnSide = (transform & WL_OUTPUT_TRANSFORM_90) != 0;
        },
    .mode =
        [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height,
           std::int32_t refresh) {
          if (!(flags & WL_OUTPUT_MODE_CURRENT)) return;
          constexpr double milli = 1000;
          self(data).pending_.mode = {width, height};
          self(data).pending_.refreshRate = refresh > milli ? refresh / milli : 60;
        },
    .done = [](void* data, wl_output*) { self(data).finish(); },
    .scale = [](void* data, wl_output*,
                std::int32_t factor) { self(data).pending_.bufferScale = std::max(1, factor); },
    .name = [](void* data, wl_output*, const char* name) { self(data).pending_.name = name; },
    .description = [](void*, wl_output*, const char*) {},
};

const zxdg_output_v1_listener WaylandOutput::placeListener{
    .logical_position = [](void* data, zxdg_output_v1*, std::int32_t x,
                           std::int32_t y) { self(data).pending_.logical.moveTo(x, y); },
    .logical_size =
        [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
          self(data).pending_.logical.setSize({width, height});
        },
    // Since version 3 the output's own is the one to wait for.
    .done =
        [](void* data, zxdg_output_v1* place) {
          if (zxdg_output_v1_get_version(place) < 3) self(data).finish();
        },
    .name = [](void* data, zxdg_output_v1*, const char* name) { self(data).pending_.name = name; },
    .description = [](void*, zxdg_output_v1*, const char*) {},
};

WaylandOutput::WaylandOutput(WaylandConnection& connection, const WaylandGlobal& global,
                             std::function<void()> onChanged)
    : globalName_(global.name),
      onChanged_(std::move(onChanged)),
      output_(connection.bind<wl_output>(global, wl_output_interface, outputVersion)) {
  wl_output_add_listener(output_.get(), &outputListener, this);
  if (!connection.outputManager()) return;
  place_.reset(zxdg_output_manager_v1_get_xdg_output(connection.outputManager(), output_.get()));
  zxdg_output_v1_add_listener(place_.get(), &placeListener, this);
}

void WaylandOutput::finish() {
  if (!place_) {
    const QSize size = pending_.isOnSide ? pending_.mode.transposed() : pending_.mode;
    pending_.logical = QRect(position_, size / pending_.bufferScale);
  }
  if (pending_.name.empty()) pending_.name = "output-" + std::to_string(globalName_);
  if (std::exchange(current_, pending_) != pending_) onChanged_();
}

}  // namespace valdrix::desktop
