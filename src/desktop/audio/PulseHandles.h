#pragma once

#include <memory>

#include <pulse/pulseaudio.h>

namespace valdrix::desktop {

/// Gives libpulse's objects back.
struct PulseDeleter {
  void operator()(pa_threaded_mainloop* mainloop) const {
    pa_threaded_mainloop_stop(mainloop);
    pa_threaded_mainloop_free(mainloop);
  }
  // Whoever lets go of a context wants to hear nothing more from it, its end included.
  void operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
  }
  void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
  void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
};

template <class T>
using PulseHandle = std::unique_ptr<T, PulseDeleter>;

/// Ends an event source of a libpulse loop.
struct PulseEventDeleter {
  pa_mainloop_api* api = nullptr;
  void operator()(pa_time_event* event) const { api->time_free(event); }
  void operator()(pa_io_event* event) const { api->io_free(event); }
};

template <class T>
using PulseEvent = std::unique_ptr<T, PulseEventDeleter>;

}  // namespace valdrix::desktop
