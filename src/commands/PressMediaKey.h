#pragma once

#include "media/MediaKeyMonitor.h"

namespace valdrix::commands {

/// Presses a media key by command. The monitor decides it as it does a key of the keyboard, and it
/// does so on every window system, whether or not a tap is installed: people bind the command where
/// their compositor or another program has the keys themselves. Main thread only.
///
/// Whether the key was taken. It is not while its indicator is switched off, nor when the
/// brightness cannot be controlled.
bool pressMediaKey(MediaKeyMonitor& monitor, const MediaKeyMonitor::KeyAction& press);

}  // namespace valdrix::commands
