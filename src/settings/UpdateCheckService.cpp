#include "settings/UpdateCheckService.h"

#include <utility>

#include "settings/ApplicationInfo.h"
#include "settings/PublishedVersion.h"

namespace valdrix {

UpdateCheckService::UpdateCheckService(platform::UrlSession& urlSession,
                                       const platform::UserCalendar& userCalendar,
                                       const platform::Bundle& bundle)
    : urlSession_(urlSession),
      userCalendar_(userCalendar),
      bundle_(bundle),
      versionURL_(applicationInfo::versionURL()),
      websiteURL_(applicationInfo::websiteURL()) {}

bool UpdateCheckService::isThrottled() const {
  // A clock that was set back counts as no time gone by.
  const auto& last = lastSuccessAt_.peek();
  return last && userCalendar_.now() - *last < throttleInterval;
}

void UpdateCheckService::checkIfNeeded() {
  // A view that was told of the end of each check would begin the next one, without a pause where
  // there is no network; so nothing is read as a view reads.
  if (isThrottled() || inFlight_.peek()) return;
  inFlight_ = std::make_shared<const Token>(
      performCheck(lifetime_.weak([this](bool isSuccess) { checkEnded(isSuccess); })));
}

Token UpdateCheckService::performCheck(std::function<void(bool)> completion) {
  return urlSession_.data(
      {.url = versionURL_, .timeout = 8},
      lifetime_.weak([this, completion = std::move(completion)](const auto& response) {
        completion(accept(response));
      }));
}

bool UpdateCheckService::accept(const std::optional<platform::UrlResponse>& response) {
  if (!response || response->statusCode < 200 || response->statusCode > 299) return false;
  const auto published = publishedVersion(response->body);
  if (!published) return false;
  const auto running = bundle_.infoText(platform::Bundle::shortVersionString).value_or("");
  hasUpdate_ = !running.empty() && *published != running;
  return true;
}

void UpdateCheckService::checkEnded(bool isSuccess) {
  if (isSuccess) lastSuccessAt_ = userCalendar_.now();
  inFlight_ = nullptr;
}

}  // namespace valdrix
