#pragma once

#include "platform/LoginItem.h"

namespace valdrix::desktop {

/// The program as an entry of the desktop's autostart folders.
class XdgLoginItem final : public platform::LoginItem {
 public:
  [[nodiscard]] Status status() const override { return Status::notFound; }
  bool registerAtLogin() override { return false; }
  bool unregisterAtLogin() override { return false; }
};

}  // namespace valdrix::desktop
