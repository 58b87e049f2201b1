#include "desktop/privacy/KeyLossNotice.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <utility>

namespace valdrix::desktop {

namespace {

constexpr double patience = 10;

/// What is missing and why, in the words of the record.
std::set<std::string> lossesOf(const KeyAccount& account) {
  std::set<std::string> losses;
  for (const auto& entry : account.keys)
    if (KeyAccount::isMissing(entry))
      losses.insert((entry.state == KeyState::taken ? "taken:" : "withheld:") +
                    std::string(platform::wordOf(entry.key)));
  return losses;
}

std::set<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
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
  const auto losses = lossesOf(keys_.account());
  auto told = wordsOf(record_.toldKeyLosses());
  if (std::ranges::includes(told, losses)) return;
  told.insert(losses.begin(), losses.end());
  std::string words;
  for (const auto& loss : told) words += (words.empty() ? "" : " ") + loss;
  record_.setToldKeyLosses(words);
  const bool isTaken =
      std::ranges::any_of(losses, [](const auto& loss) { return loss.starts_with("taken"); });
  show_(isTaken ? DesktopNotification::mediaKeysTaken() : DesktopNotification::mediaKeysWithheld());
}

}  // namespace valdrix::desktop
