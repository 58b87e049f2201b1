#include "desktop/session/QtApplication.h"

#include <QGuiApplication>
#include <QWindow>

namespace valdrix::desktop {

void QtApplication::setActivationPolicy(platform::ActivationPolicy policy) {
  QGuiApplication::setQuitOnLastWindowClosed(policy == platform::ActivationPolicy::regular);
}

void QtApplication::activate() {
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (!window->isVisible() || window->flags() & Qt::WindowDoesNotAcceptFocus) continue;
    window->raise();
    window->requestActivate();
  }
}

void QtApplication::terminate() {
  // `exit`, not `quit`: the latter asks every window first and any of them may refuse. Queued, so
  // that it also ends a loop that has not started yet.
  QMetaObject::invokeMethod(
      QCoreApplication::instance(), [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
}

}  // namespace valdrix::desktop
