#include "desktop/net/HttpsUrlSession.h"

#include <csignal>
#include <malloc.h>
#include <utility>

#include <system_error>

namespace valdrix::desktop {

namespace {

// Signals are the main thread's, and a connection that ends while it is written to raises one.
void blockSignals() {
  sigset_t all;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

HttpsUrlSession::HttpsUrlSession(platform::RunLoop& runLoop, TrustedCertificates certificates)
    : runLoop_(runLoop), certificates_(std::move(certificates)) {}

Token HttpsUrlSession::data(
    const platform::UrlRequest& request,
    std::function<void(std::optional<platform::UrlResponse> response)> completion) {
  const auto id = nextId_++;
  running_[id].completion = std::move(completion);
  start(id, request);
  return Token(lifetime_.weak([this, id] { cancel(id); }));
}

void HttpsUrlSession::start(std::uint64_t id, const platform::UrlRequest& request) {
  auto finishHere = lifetime_.weak(
      [this, id](const std::optional<platform::UrlResponse>& answer) { finish(id, answer); });
  auto transfer = [&runLoop = runLoop_, finishHere, request,
                   certificates = certificates_](const std::stop_token& stop) {
    blockSignals();
    auto answer = HttpsTransfer(request, certificates).run(stop);
    // The system's certificates take room that nothing else will need.
    ::malloc_trim(0);
    runLoop.async([finishHere, answer = std::move(answer)] { finishHere(answer); });
  };
  try {
    running_[id].thread = std::jthread(std::move(transfer));
  } catch (const std::system_error&) {
    runLoop_.async([finishHere] { finishHere(std::nullopt); });
  }
}

void HttpsUrlSession::cancel(std::uint64_t id) {
  const auto found = running_.find(id);
  if (found == running_.end()) return;
  found->second.completion = nullptr;
  found->second.thread.request_stop();
}

void HttpsUrlSession::finish(std::uint64_t id, std::optional<platform::UrlResponse> response) {
  // The completion may end the session.
  const auto completion = std::move(running_.extract(id).mapped().completion);
  if (completion) completion(std::move(response));
}

}  // namespace valdrix::desktop
