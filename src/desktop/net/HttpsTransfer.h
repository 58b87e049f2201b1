#pragma once

#include <chrono>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <string>

#include "platform/UrlSession.h"

namespace valdrix::desktop {

/// Where the certificates are that a server's must come from; the system's own place where a name
/// is empty.
struct TrustedCertificates {
  std::string file{};
  std::string folder{};

  /// As `SSL_CERT_FILE` and `SSL_CERT_DIR` say.
  [[nodiscard]] static TrustedCertificates ofEnvironment();
};

/// One GET over HTTPS, from the look-up of the name to the end of the body. Sends a request line
/// and `Host`, nothing else. Follows a few redirections, only to the same host and port. Passes
/// through the proxy that `https_proxy` or `all_proxy` names, with what credentials stand there.
///
/// Gives up: a body of more than 64 KiB, headers of more than that, an answer that was or might
/// have been cut off, a server that cannot prove who it is, a URL with a user's name in it.
class HttpsTransfer {
 public:
  HttpsTransfer(platform::UrlRequest request, TrustedCertificates certificates);

  /// Blocks until the whole answer is there or the time is over; a name that is looked up then goes
  /// on being looked up. The answer may have any status but that of a redirection that was not
  /// followed.
  [[nodiscard]] std::optional<platform::UrlResponse> run();

 private:
  struct UrlCleanup {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
  };
  struct ListCleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  struct EasyCleanup {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  using Url = std::unique_ptr<CURLU, UrlCleanup>;
  using Clock = std::chrono::steady_clock;

  static std::size_t takeHeader(char* bytes, std::size_t size, std::size_t count, void* transfer);
  static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* transfer);
  /// Nothing for what is no URL that may be asked for.
  [[nodiscard]] static Url parse(const char* text);
  [[nodiscard]] static bool hasSameHost(const Url& one, const Url& other);

  [[nodiscard]] bool prepare();
  /// Asks for one URL. Whether the whole answer came.
  [[nodiscard]] bool get(const Url& url);
  [[nodiscard]] bool hasKnownEnd() const;
  [[nodiscard]] platform::UrlResponse takeResponse();

  platform::UrlRequest request_;
  TrustedCertificates certificates_;
  Clock::time_point deadline_{};
  std::size_t headerSize_ = 0;
  std::string body_;
  // Used by the one below it.
  std::unique_ptr<curl_slist, ListCleanup> headers_;
  std::unique_ptr<CURL, EasyCleanup> easy_;
};

}  // namespace valdrix::desktop
