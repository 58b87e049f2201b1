#pragma once

#include <cstdint>
#include <map>
#include <thread>

#include "desktop/net/HttpsTransfer.h"
#include "observation/Lifetime.h"
#include "platform/RunLoop.h"
#include "platform/UrlSession.h"

namespace valdrix::desktop {

/// Short transfers over HTTPS, each in a thread of its own that ends with it. Destroying the
/// session ends those that are under way; nobody waits for a server or for a name.
class HttpsUrlSession final : public platform::UrlSession {
 public:
  /// `runLoop` outlives this.
  explicit HttpsUrlSession(platform::RunLoop& runLoop,
                           TrustedCertificates certificates = TrustedCertificates::ofEnvironment());

  [[nodiscard]] Token data(
      const platform::UrlRequest& request,
      std::function<void(std::optional<platform::UrlResponse> response)> completion) override;

 private:
  struct Running {
    std::function<void(std::optional<platform::UrlResponse>)> completion;
    std::jthread thread;
  };

  void start(std::uint64_t id, const platform::UrlRequest& request);
  void cancel(std::uint64_t id);
  void finish(std::uint64_t id, std::optional<platform::UrlResponse> response);

  platform::RunLoop& runLoop_;
  TrustedCertificates certificates_;
  std::uint64_t nextId_ = 0;
  std::map<std::uint64_t, Running> running_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
