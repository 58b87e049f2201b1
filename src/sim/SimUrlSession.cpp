#include "sim/SimUrlSession.h"

#include <utility>

namespace valdrix::sim {

Token SimUrlSession::data(const platform::UrlRequest& request,
                          std::function<void(std::optional<platform::UrlResponse>)> completion) {
  trace_.add("network get " + request.url);
  const auto answer = answers_.find(request.url);
  std::optional<platform::UrlResponse> response;
  double delay = 0;
  if (answer != answers_.end()) {
    const bool isInTime = answer->second.delay < request.timeout;
    if (isInTime) response = answer->second.response;
    delay = isInTime ? answer->second.delay : request.timeout;
  }
  return runLoop_.scheduleDesktopTimer(
      delay, [completion = std::move(completion), response = std::move(response)] {
        completion(response);
      });
}

void SimUrlSession::setAnswer(const std::string& url, platform::UrlResponse response,
                              double delay) {
  answers_[url] = {std::move(response), delay};
}

}  // namespace valdrix::sim
