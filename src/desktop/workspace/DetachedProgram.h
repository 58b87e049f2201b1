#pragma once

#include <QStringList>

namespace valdrix::desktop {

/// Starts another program that goes on by itself: it gets nothing of this process but the
/// environment (no open files, no blocked signals, no terminal) and leaves nothing behind here when
/// it ends. No shell is involved. Whether it was started.
bool startDetached(const QStringList& command);

}  // namespace valdrix::desktop
