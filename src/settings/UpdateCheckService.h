#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "observation/Lifetime.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/Bundle.h"
#include "platform/UrlSession.h"
#include "platform/UserCalendar.h"

namespace valdrix {

/// Finds out whether the project has published another version than the one that runs. Failures are
/// silent and leave everything as it was. Main thread only.
class UpdateCheckService {
 public:
  /// The least time between a check that succeeded and the next one.
  static constexpr std::chrono::seconds throttleInterval{300};

  /// All ports must outlive it.
  UpdateCheckService(platform::UrlSession& urlSession, const platform::UserCalendar& userCalendar,
                     const platform::Bundle& bundle);

  /// The latest check that succeeded found another version; older ones count, too.
  [[nodiscard]] bool hasUpdate() const { return hasUpdate_; }
  /// The file whose text is the published version.
  [[nodiscard]] const std::string& versionURL() const { return versionURL_; }
  [[nodiscard]] const std::string& websiteURL() const { return websiteURL_; }
  /// When the latest check that succeeded ended, by the clock on the wall.
  [[nodiscard]] std::optional<platform::Instant> lastSuccessAt() const { return lastSuccessAt_; }
  /// Whether a check runs.
  [[nodiscard]] bool isInFlight() const { return inFlight_.get() != nullptr; }

  /// Begins a check, unless one runs or the latest success is too recent, and returns at once. A
  /// view may call it while it is evaluated: it reads nothing on the view's behalf.
  void checkIfNeeded();

 private:
  [[nodiscard]] bool isThrottled() const;
  /// Begins a check; `completion` is told whether it succeeded.
  [[nodiscard]] Token performCheck(std::function<void(bool isSuccess)> completion);
  /// Whether `response` holds a published version; if so, compares it with the running one.
  bool accept(const std::optional<platform::UrlResponse>& response);
  void checkEnded(bool isSuccess);

  platform::UrlSession& urlSession_;
  const platform::UserCalendar& userCalendar_;
  const platform::Bundle& bundle_;
  Observed<bool> hasUpdate_{false};
  std::string versionURL_;
  std::string websiteURL_;
  Observed<std::optional<platform::Instant>> lastSuccessAt_;
  /// The running check.
  Observed<std::shared_ptr<const Token>> inFlight_;
  Lifetime lifetime_;
};

}  // namespace valdrix
