#include "desktop/net/HttpsUrlSession.h"

namespace valdrix::desktop {

HttpsUrlSession::HttpsUrlSession(platform::RunLoop& runLoop) : runLoop_(runLoop) {}

Token HttpsUrlSession::data(
    const platform::UrlRequest& /*request*/,
    std::function<void(std::optional<platform::UrlResponse> response)> completion) {
  return runLoop_.scheduleTimer(0, false, [completion = std::move(completion)] { completion({}); });
}

}  // namespace valdrix::desktop
