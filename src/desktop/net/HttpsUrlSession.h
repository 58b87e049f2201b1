#pragma once

#include "platform/RunLoop.h"
#include "platform/UrlSession.h"

namespace valdrix::desktop {

/// Short transfers over HTTPS.
class HttpsUrlSession final : public platform::UrlSession {
 public:
  explicit HttpsUrlSession(platform::RunLoop& runLoop);

  [[nodiscard]] Token data(
      const platform::UrlRequest& request,
      std::function<void(std::optional<platform::UrlResponse> response)> completion) override;

 private:
  platform::RunLoop& runLoop_;
};

}  // namespace valdrix::desktop
