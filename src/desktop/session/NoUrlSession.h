#pragma once

#include <utility>

#include "platform/RunLoop.h"
#include "platform/UrlSession.h"

namespace valdrix::desktop {

/// What stands in where the program was built to stay off the network: every transfer fails at the
/// loop's next turn.
class NoUrlSession final : public platform::UrlSession {
 public:
  /// `runLoop` outlives this.
  explicit NoUrlSession(platform::RunLoop& runLoop) : runLoop_(runLoop) {}

  [[nodiscard]] Token data(
      const platform::UrlRequest& /*request*/,
      std::function<void(std::optional<platform::UrlResponse> response)> completion) override {
    return runLoop_.scheduleTimer(0, false,
                                  [completion = std::move(completion)] { completion({}); });
  }

 private:
  platform::RunLoop& runLoop_;
};

}  // namespace valdrix::desktop
