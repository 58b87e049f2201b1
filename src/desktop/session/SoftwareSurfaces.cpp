#include "desktop/session/SoftwareSurfaces.h"

#include <QGuiApplication>
#include <QLoggingCategory>

namespace valdrix::desktop {

namespace {

constexpr auto variable = "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION";

}  // namespace

// Qt has no call for it: it looks into the environment when the first window is shown. That must
// not stay there, or programs that this one starts would do without, too.
void withSoftwareSurfaces(const std::function<void()>& block) {
  const bool isWayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
  if (!isWayland || qEnvironmentVariableIsSet(variable)) return block();
  qputenv(variable, "none");
  // That there is none of that name is the purpose.
  QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.wayland.warning=false"));
  block();
  QLoggingCategory::setFilterRules(QString());
  qunsetenv(variable);
}

}  // namespace valdrix::desktop
