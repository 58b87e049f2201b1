#pragma once

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace valdrix::desktop {

struct DisconnectXcb {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
/// A connection to an X server. What xcb returns is never null; ask `xcb_connection_has_error`.
using XcbConnection = std::unique_ptr<xcb_connection_t, DisconnectXcb>;

struct FreeXcb {
  void operator()(void* memory) const { std::free(memory); }
};
/// A reply, event or error that xcb handed over; null when there is none.
template <class T>
using XcbOwned = std::unique_ptr<T, FreeXcb>;

/// Takes over what an xcb call returned.
template <class T>
[[nodiscard]] XcbOwned<T> xcbOwned(T* memory) {
  return XcbOwned<T>(memory);
}

}  // namespace valdrix::desktop
