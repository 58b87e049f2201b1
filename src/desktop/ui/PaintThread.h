#pragma once

namespace valdrix::desktop {

/// Has Qt paint on the thread that asks for it, from now on. It would hand parts of larger fills to
/// threads of its own, which for a panel costs more than it saves; they wait for half a minute, and
/// end when everything else is at rest. To be called before there are other threads.
void keepPaintingOnOneThread();

}  // namespace valdrix::desktop
