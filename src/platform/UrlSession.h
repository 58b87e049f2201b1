#pragma once

#include <functional>
#include <optional>
#include <string>

#include "observation/Token.h"

namespace valdrix::platform {

struct UrlRequest {
  std::string url;
  /// The whole transfer ends after so many seconds.
  double timeout = 8;
};

struct UrlResponse {
  int statusCode = 0;
  std::string body{};
};

/// HTTPS GET without caches, cookies or headers of our own.
class UrlSession {
 public:
  virtual ~UrlSession() = default;

  /// Begins a transfer and returns at once. `completion` is called on the main thread in a later
  /// turn of the loop, with nothing when no whole answer came: no network, an untrusted
  /// certificate, too large, too late. It may end the token. Ending it before gives the transfer
  /// up; then there is no call.
  [[nodiscard]] virtual Token data(
      const UrlRequest& request,
      std::function<void(std::optional<UrlResponse> response)> completion) = 0;
};

}  // namespace valdrix::platform
