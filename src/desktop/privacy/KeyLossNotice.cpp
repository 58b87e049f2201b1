#include "desktop/privacy/KeyLossNotice.h"

#include <string>
#include <utility>

namespace valdrix::desktop {

namespace {

constexpr double patience = 10;

/// Which keys are missing and why, for the record; empty when none is.
std::string causeOf(const KeyAccount& account) {
  std::string cause;
  for (const auto& entry : account.keys)
    if (KeyAccount::isMissing(entry))
      cause += (entry.state == KeyState::taken ? " taken:" : " withheld:") +
               std::string(platform::wordOf(entry.key));
  return cause.empty() ? cause : cause.substr(1);
}

}  // namespace

KeyLossNotice::KeyLossNotice(MediaKeyTaps& keys, PrivacyRecord& record, platform::RunLoop& runLoop,
                             Show show)
    : keys_(keys),
      record_(record),
      runLoop_(runLoop),
      show_(std::move(show)),
      observer_(keys.observeAccount([this] { accountChanged(); })) {
  keys_.setOnPrompt([this] { tell(); });
}

void KeyLossNotice::accountChanged() {
  if (keys_.isProcessTrusted())
    patience_.reset();
  else if (!patience_)
    patience_ = runLoop_.scheduleTimer(patience, false, [this] { tell(); });
}

void KeyLossNotice::tell() {
  patience_.reset();
  const auto account = keys_.account();
  const auto cause = causeOf(account);
  if (cause.empty() || record_.toldKeyLoss() == cause) return;
  record_.setToldKeyLoss(cause);
  const bool isTaken = cause.find("taken:") != std::string::npos;
  show_(isTaken ? DesktopNotification::mediaKeysTaken() : DesktopNotification::mediaKeysWithheld());
}

}  // namespace valdrix::desktop
