#include "desktop/session/ActivationToken.h"

#include <QByteArray>

namespace valdrix::desktop {

namespace {

constexpr auto waylandVariable = "XDG_ACTIVATION_TOKEN";
constexpr auto x11Variable = "DESKTOP_STARTUP_ID";

}  // namespace

ActivationToken ActivationToken::take() {
  QByteArray text = qgetenv(waylandVariable);
  if (text.isEmpty()) text = qgetenv(x11Variable);
  qunsetenv(waylandVariable);
  return ActivationToken(text.toStdString());
}

// Qt has no call for it: it looks into the environment when a window asks to be activated.
void ActivationToken::during(const std::function<void()>& block) const {
  if (text_.empty()) return block();
  qputenv(waylandVariable, QByteArray::fromStdString(text_));
  block();
  qunsetenv(waylandVariable);
}

bool ActivationToken::isAtHand() { return qEnvironmentVariableIsSet(waylandVariable); }

}  // namespace valdrix::desktop
