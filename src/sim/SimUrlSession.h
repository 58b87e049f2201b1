#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/UrlSession.h"
#include "sim/ManualRunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated network: what each URL answers, and how long it takes.
class SimUrlSession final : public platform::UrlSession {
 public:
  SimUrlSession(Trace& trace, ManualRunLoop& runLoop) : trace_(trace), runLoop_(runLoop) {}

  [[nodiscard]] Token data(
      const platform::UrlRequest& request,
      std::function<void(std::optional<platform::UrlResponse> response)> completion) override;

  /// What `url` answers from now on, after `delay` seconds. A URL without an answer, and one that
  /// takes longer than its request waits, fail.
  void setAnswer(const std::string& url, platform::UrlResponse response, double delay);
  /// No URL answers any more.
  void forgetAnswers() { answers_.clear(); }

 private:
  struct Answer {
    platform::UrlResponse response;
    double delay;
  };

  Trace& trace_;
  ManualRunLoop& runLoop_;
  std::map<std::string, Answer> answers_;
};

}  // namespace valdrix::sim
