#pragma once

#include <functional>
#include <utility>

namespace valdrix::desktop {

/// What makes a surface one that the compositor shows in front of everything, at a place of its
/// own, for as long as it lives. The surface must outlive it.
class WaylandSurfaceRole {
 public:
  struct Handlers {
    /// The surface can be drawn on, or is to be committed anew.
    std::function<void()> configured;
    /// The compositor has taken the surface away, or wants it gone. May end the role.
    std::function<void()> closed;
  };

  virtual ~WaylandSurfaceRole() = default;
  WaylandSurfaceRole(const WaylandSurfaceRole&) = delete;
  WaylandSurfaceRole& operator=(const WaylandSurfaceRole&) = delete;

 protected:
  explicit WaylandSurfaceRole(Handlers handlers) : handlers_(std::move(handlers)) {}

  void tellConfigured() const { handlers_.configured(); }
  void tellClosed() const {
    // Copied, because it ends the role.
    const auto closed = handlers_.closed;
    closed();
  }

 private:
  Handlers handlers_;
};

}  // namespace valdrix::desktop
