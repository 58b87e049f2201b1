#pragma once

#include <QString>

#include "platform/RunLoop.h"
#include "platform/UrlSession.h"

namespace valdrix::desktop {

/// Short transfers over HTTPS, each by a program of its own that ends with it: this one neither
/// opens a connection nor keeps the libraries for it in memory. Nobody waits for a server or for a
/// name.
class HttpsUrlSession final : public platform::UrlSession {
 public:
  /// `program` takes a URL and a number of seconds and prints the answer's status, a line break and
  /// the body; it ends with 0 when the whole answer came. `runLoop` outlives this.
  explicit HttpsUrlSession(platform::RunLoop& runLoop, QString program = installedProgram());
  /// The one that comes with the agent.
  [[nodiscard]] static QString installedProgram();

  [[nodiscard]] Token data(
      const platform::UrlRequest& request,
      std::function<void(std::optional<platform::UrlResponse> response)> completion) override;

 private:
  platform::RunLoop& runLoop_;
  QString program_;
};

}  // namespace valdrix::desktop
