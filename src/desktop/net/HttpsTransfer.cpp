#include "desktop/net/HttpsTransfer.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace valdrix::desktop {

namespace {

constexpr std::size_t largestBody = 64 * 1024;
constexpr std::size_t largestHeaders = 64 * 1024;
constexpr int mostRedirections = 5;
/// The longest that a transfer may be asked to take.
constexpr double longestTimeout = 3600;

std::string environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string part(CURLU* url, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
  return text;
}

/// Whether the library can do what is needed. One that looks names up in the calling thread could
/// not be limited meanwhile.
bool isUsable() {
  static const bool isInitialized = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return isInitialized &&
         (curl_version_info(CURLVERSION_NOW)->features & CURL_VERSION_ASYNCHDNS) != 0;
}

}  // namespace

TrustedCertificates TrustedCertificates::ofEnvironment() {
  return {environmentVariable("SSL_CERT_FILE"), environmentVariable("SSL_CERT_DIR")};
}

HttpsTransfer::HttpsTransfer(platform::UrlRequest request, TrustedCertificates certificates)
    : request_(std::move(request)), certificates_(std::move(certificates)) {}

std::optional<platform::UrlResponse> HttpsTransfer::run() {
  const double seconds = request_.timeout > 0 ? std::min(request_.timeout, longestTimeout) : 0;
  deadline_ = Clock::now() + std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
  const Url first = parse(request_.url.c_str());
  if (!first || !prepare()) return std::nullopt;
  Url next;
  for (int i = 0; i <= mostRedirections; ++i) {
    if (!get(next ? next : first)) return std::nullopt;
    const char* redirection = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_REDIRECT_URL, &redirection);
    if (redirection == nullptr) return takeResponse();
    next = parse(redirection);
    if (!next || !hasSameHost(first, next)) return std::nullopt;
  }
  return std::nullopt;
}

HttpsTransfer::Url HttpsTransfer::parse(const char* text) {
  Url url(curl_url());
  const bool isUrl =
      url && curl_url_set(url.get(), CURLUPART_URL, text, CURLU_DISALLOW_USER) == CURLUE_OK;
  return isUrl && part(url.get(), CURLUPART_SCHEME) == "https" ? std::move(url) : nullptr;
}

bool HttpsTransfer::hasSameHost(const Url& one, const Url& other) {
  const auto host = [](const Url& url) { return part(url.get(), CURLUPART_HOST); };
  return curl_strequal(host(one).c_str(), host(other).c_str()) != 0 &&
         part(one.get(), CURLUPART_PORT) == part(other.get(), CURLUPART_PORT);
}

bool HttpsTransfer::prepare() {
  if (!isUsable()) return false;
  // A header without a value takes the library's own one away.
  headers_.reset(curl_slist_append(nullptr, "Accept:"));
  easy_.reset(curl_easy_init());
  if (!headers_ || !easy_) return false;
  bool isDone = true;
  const auto set = [&](CURLoption option, auto value) {
    isDone = isDone && curl_easy_setopt(easy_.get(), option, value) == CURLE_OK;
  };
  set(CURLOPT_PROTOCOLS_STR, "https");
  set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
  set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
  set(CURLOPT_NOSIGNAL, 1L);
  // A name that is still being looked up is not waited for at the end.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_HTTPHEADER, headers_.get());
  set(CURLOPT_HEADERFUNCTION, &takeHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &takeBody);
  set(CURLOPT_WRITEDATA, this);
  if (!certificates_.file.empty()) set(CURLOPT_CAINFO, certificates_.file.c_str());
  if (!certificates_.folder.empty()) set(CURLOPT_CAPATH, certificates_.folder.c_str());
  return isDone;
}

bool HttpsTransfer::get(const Url& url) {
  headerSize_ = 0;
  body_.clear();
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now()).count();
  return rest > 0 &&
         curl_easy_setopt(easy_.get(), CURLOPT_TIMEOUT_MS, static_cast<long>(rest)) == CURLE_OK &&
         curl_easy_setopt(easy_.get(), CURLOPT_CURLU, url.get()) == CURLE_OK &&
         curl_easy_perform(easy_.get()) == CURLE_OK && hasKnownEnd();
}

// The library takes a connection that breaks off for the end of a body that has no other.
bool HttpsTransfer::hasKnownEnd() const {
  const auto has = [this](const char* name) {
    curl_header* header = nullptr;
    return curl_easy_header(easy_.get(), name, 0, CURLH_HEADER, -1, &header) == CURLHE_OK;
  };
  return body_.empty() || has("Content-Length") || has("Transfer-Encoding");
}

platform::UrlResponse HttpsTransfer::takeResponse() {
  long status = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  return {static_cast<int>(status), std::move(body_)};
}

// Less than was given ends a transfer.
std::size_t HttpsTransfer::takeHeader(char* /*bytes*/, std::size_t size, std::size_t count,
                                      void* transfer) {
  auto& headerSize = static_cast<HttpsTransfer*>(transfer)->headerSize_;
  headerSize += size * count;
  return headerSize <= largestHeaders ? size * count : 0;
}

std::size_t HttpsTransfer::takeBody(char* bytes, std::size_t size, std::size_t count,
                                    void* transfer) {
  auto& body = static_cast<HttpsTransfer*>(transfer)->body_;
  if (body.size() + size * count > largestBody) return 0;
  body.append(bytes, size * count);
  return size * count;
}

}  // namespace valdrix::desktop
