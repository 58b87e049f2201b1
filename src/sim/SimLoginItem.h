#pragma once

#include "platform/LoginItem.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// What the simulated desktop starts at login, and whether it lets the program change that.
class SimLoginItem final : public platform::LoginItem {
 public:
  explicit SimLoginItem(Trace& trace) : trace_(trace) {}

  [[nodiscard]] Status status() const override { return status_; }
  bool registerAtLogin() override { return change("login-item register", statusWhenRegistered_); }
  bool unregisterAtLogin() override {
    return change("login-item unregister", Status::notRegistered);
  }

  /// As if the user had changed it in the desktop's settings.
  void setStatus(Status status) { status_ = status; }
  /// What a registration leads to: enabled, or held back until the user approves.
  void setStatusWhenRegistered(Status status) { statusWhenRegistered_ = status; }
  void setRefusing(bool isRefusing) { isRefusing_ = isRefusing; }

 private:
  bool change(std::string_view what, Status status) {
    trace_.add(std::string(what) + (isRefusing_ ? " refused" : ""));
    if (!isRefusing_) status_ = status;
    return !isRefusing_;
  }

  Trace& trace_;
  Status status_ = Status::notRegistered;
  Status statusWhenRegistered_ = Status::enabled;
  bool isRefusing_ = false;
};

}  // namespace valdrix::sim
