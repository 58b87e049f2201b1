#include "desktop/wayland/WaylandConnection.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <QAbstractEventDispatcher>

namespace valdrix::desktop {

namespace {

// The versions whose requests and events are used.
constexpr std::uint32_t compositorVersion = 4;
constexpr std::uint32_t layerShellVersion = 4;
constexpr std::uint32_t plasmaShellVersion = 2;
constexpr std::uint32_t outputManagerVersion = 3;

// A rule of an interface was broken, or one of the display's own.
bool isComplaint(int error) { return error == EPROTO || error == EINVAL || error == EFAULT; }

}  // namespace

struct WaylandConnection::Barrier {
  WaylandConnection& connection;
  int turnsLeft;
  std::function<void()> block;
  WaylandOwned<wl_callback> callback;
};

WaylandConnection::WaylandConnection() : display_(wl_display_connect(nullptr)) {
  if (!display_) {
    lose();
    return;
  }
  static constexpr wl_registry_listener listener{
      .global =
          [](void* data, wl_registry*, std::uint32_t name, const char* interface,
             std::uint32_t version) {
            static_cast<WaylandConnection*>(data)->add({name, interface, version});
          },
      .global_remove =
          [](void* data, wl_registry*, std::uint32_t name) {
            static_cast<WaylandConnection*>(data)->remove(name);
          },
  };
  registry_.reset(wl_display_get_registry(display_.get()));
  wl_registry_add_listener(registry_.get(), &listener, this);
  roundTrip();
  if (!isUsable()) return;
  answerPings();

  const int socket = wl_display_get_fd(display_.get());
  readable_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
  QObject::connect(readable_.get(), &QSocketNotifier::activated, &context_, [this] { read(); });
  writable_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
  writable_->setEnabled(false);
  QObject::connect(writable_.get(), &QSocketNotifier::activated, &context_, [this] { flush(); });
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                   &context_, [this] { flush(); });
}

WaylandConnection::~WaylandConnection() = default;

void WaylandConnection::add(const WaylandGlobal& global) {
  globals_[global.name] = global;
  const auto take = [&]<class T>(WaylandOwned<T>& place, const wl_interface& interface,
                                 std::uint32_t version = 1) {
    if (!place && global.interface == interface.name) place = bind<T>(global, interface, version);
  };
  take(compositor_, wl_compositor_interface, compositorVersion);
  take(shm_, wl_shm_interface);
  take(layerShell_, zwlr_layer_shell_v1_interface, layerShellVersion);
  take(windowShell_, xdg_wm_base_interface);
  take(plasmaShell_, org_kde_plasma_shell_interface, plasmaShellVersion);
  take(outputManager_, zxdg_output_manager_v1_interface, outputManagerVersion);
  take(viewporter_, wp_viewporter_interface);
  take(fractionalScaleManager_, wp_fractional_scale_manager_v1_interface);
  added_.notify(global);
}

void WaylandConnection::remove(std::uint32_t name) {
  if (globals_.erase(name) > 0) removed_.notify(name);
}

// A compositor takes a program with windows for hung that does not answer.
void WaylandConnection::answerPings() {
  static constexpr xdg_wm_base_listener listener{
      .ping = [](void*, xdg_wm_base* shell, std::uint32_t serial) {
        xdg_wm_base_pong(shell, serial);
      }};
  if (windowShell_) xdg_wm_base_add_listener(windowShell_.get(), &listener, nullptr);
}

bool WaylandConnection::needsPlasmaShell() const {
  return windowShell_ && plasmaShell_ &&
         zwlr_layer_shell_v1_get_version(layerShell()) <
             ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND_SINCE_VERSION;
}

Token WaylandConnection::observeGlobals(std::function<void(const WaylandGlobal&)> added,
                                        std::function<void(std::uint32_t)> removed) {
  for (const auto& [name, global] : globals_) added(global);
  auto tokens = std::make_shared<std::pair<Token, Token>>(added_.add(std::move(added)),
                                                          removed_.add(std::move(removed)));
  return Token([tokens]() mutable { tokens.reset(); });
}

// Some compositors look at where the pointer is only at the end of a turn of their loop, after they
// have answered all that was asked in it: the second answer comes from a later turn.
void WaylandConnection::afterSettling(std::function<void()> block) {
  if (!isUsable()) return;
  sync(std::make_unique<Barrier>(Barrier{*this, 2, std::move(block), nullptr}));
}

void WaylandConnection::sync(std::unique_ptr<Barrier> barrier) {
  static constexpr wl_callback_listener listener{
      .done = [](void* data, wl_callback*, std::uint32_t) {
        auto& waiting = *static_cast<Barrier*>(data);
        waiting.connection.finish(waiting);
      }};
  auto* const callback = wl_display_sync(display_.get());
  barrier->callback.reset(callback);
  wl_callback_add_listener(callback, &listener, barrier.get());
  barriers_[callback] = std::move(barrier);
}

void WaylandConnection::finish(Barrier& barrier) {
  auto node = barriers_.extract(barrier.callback.get());
  if (--barrier.turnsLeft > 0)
    sync(std::move(node.mapped()));
  else
    barrier.block();
}

void WaylandConnection::read() {
  while (wl_display_prepare_read(display_.get()) != 0)
    if (wl_display_dispatch_pending(display_.get()) < 0) return lose();
  wl_display_flush(display_.get());
  if (wl_display_read_events(display_.get()) < 0) return lose();
  if (wl_display_dispatch_pending(display_.get()) < 0) return lose();
  flush();
}

void WaylandConnection::roundTrip() {
  if (!isLost_ && wl_display_roundtrip(display_.get()) < 0) lose();
}

void WaylandConnection::flush() {
  if (!isUsable()) return;
  const bool isFull = wl_display_flush(display_.get()) < 0 && errno == EAGAIN;
  // Any other failure shows when reading, after what the compositor said last.
  writable_->setEnabled(isFull);
}

void WaylandConnection::lose() {
  if (std::exchange(isLost_, true)) return;
  for (auto* const notifier : {readable_.get(), writable_.get()})
    if (notifier) notifier->setEnabled(false);
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        const bool hasComplained = display_ && isComplaint(wl_display_get_error(display_.get()));
        if (const auto tell = std::exchange(onLost_, nullptr)) tell(hasComplained);
      },
      Qt::QueuedConnection);
}

}  // namespace valdrix::desktop
