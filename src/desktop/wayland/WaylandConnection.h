#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include <QObject>
#include <QSocketNotifier>

#include "desktop/wayland/WaylandHandles.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// What a compositor offers, under the number by which it is asked for.
struct WaylandGlobal {
  std::uint32_t name = 0;
  std::string interface;
  std::uint32_t version = 0;
};

/// A connection of our own to the compositor, read on the main loop. Qt has one as well, if it runs
/// on Wayland, which knows nothing of layers. Main thread only.
class WaylandConnection {
 public:
  /// Connects to what WAYLAND_DISPLAY says and waits for the list of what the compositor offers.
  WaylandConnection();
  ~WaylandConnection();
  WaylandConnection(const WaylandConnection&) = delete;
  WaylandConnection& operator=(const WaylandConnection&) = delete;

  /// Whether panels can be shown through it (see `whyNoWaylandPanel`).
  [[nodiscard]] bool isUsable() const { return compositor_ && shm_ && layerShell_ && !isLost_; }

  /// Calls `added` for what the compositor offers already and whenever it offers more, and
  /// `removed` when something is withdrawn.
  [[nodiscard]] Token observeGlobals(std::function<void(const WaylandGlobal&)> added,
                                     std::function<void(std::uint32_t name)> removed);
  /// Called once, in a turn of its own, when the connection has ended, even while it was made: the
  /// compositor has gone or, when it `hasComplained`, thinks that this program broke a protocol's
  /// rule.
  void setOnLost(std::function<void(bool hasComplained)> onLost) { onLost_ = std::move(onLost); }

  /// Binds `global` at `version` at most.
  template <class T>
  [[nodiscard]] WaylandOwned<T> bind(const WaylandGlobal& global, const wl_interface& interface,
                                     std::uint32_t version) {
    return WaylandOwned<T>(static_cast<T*>(wl_registry_bind(
        registry_.get(), global.name, &interface, std::min(global.version, version))));
  }

  /// Calls `block` when the compositor has dealt with everything that was asked of it so far, and
  /// has looked at where the pointer is since.
  void afterSettling(std::function<void()> block);
  /// Waits until the compositor has dealt with everything, and deals with what it said.
  void roundTrip();
  void flush();

  [[nodiscard]] wl_compositor* compositor() const { return compositor_.get(); }
  [[nodiscard]] wl_shm* shm() const { return shm_.get(); }
  [[nodiscard]] zwlr_layer_shell_v1* layerShell() const { return layerShell_.get(); }
  /// Whether the compositor gives a layer surface the keyboard at a click, whatever that asks for,
  /// and has a Plasma shell, whose surfaces need not get it: KWin, as long as its layer shell is
  /// older than version 4, which knows of a keyboard on demand. In Plasma 5.27 it is of version 3.
  [[nodiscard]] bool needsPlasmaShell() const;
  /// The following may be missing.
  [[nodiscard]] xdg_wm_base* windowShell() const { return windowShell_.get(); }
  [[nodiscard]] org_kde_plasma_shell* plasmaShell() const { return plasmaShell_.get(); }
  [[nodiscard]] zxdg_output_manager_v1* outputManager() const { return outputManager_.get(); }
  [[nodiscard]] wp_viewporter* viewporter() const { return viewporter_.get(); }
  [[nodiscard]] wp_fractional_scale_manager_v1* fractionalScaleManager() const {
    return fractionalScaleManager_.get();
  }

 private:
  struct Barrier;

  void add(const WaylandGlobal& global);
  void remove(std::uint32_t name);
  void answerPings();
  void sync(std::unique_ptr<Barrier> barrier);
  void finish(Barrier& barrier);
  void read();
  void lose();

  WaylandOwned<wl_display> display_;
  WaylandOwned<wl_registry> registry_;
  WaylandOwned<wl_compositor> compositor_;
  WaylandOwned<wl_shm> shm_;
  WaylandOwned<zwlr_layer_shell_v1> layerShell_;
  WaylandOwned<xdg_wm_base> windowShell_;
  WaylandOwned<org_kde_plasma_shell> plasmaShell_;
  WaylandOwned<zxdg_output_manager_v1> outputManager_;
  WaylandOwned<wp_viewporter> viewporter_;
  WaylandOwned<wp_fractional_scale_manager_v1> fractionalScaleManager_;
  std::map<std::uint32_t, WaylandGlobal> globals_;
  Listeners<const WaylandGlobal&> added_;
  Listeners<std::uint32_t> removed_;
  std::map<wl_callback*, std::unique_ptr<Barrier>> barriers_;
  std::unique_ptr<QSocketNotifier> readable_;
  std::unique_ptr<QSocketNotifier> writable_;
  bool isLost_ = false;
  std::function<void(bool hasComplained)> onLost_;
  QObject context_;
};

}  // namespace valdrix::desktop
