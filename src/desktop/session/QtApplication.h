#pragma once

#include "platform/Application.h"

namespace valdrix::desktop {

/// The running program as a Qt application.
class QtApplication final : public platform::Application {
 public:
  /// `accessory` and `prohibited` keep the program running without any window; `regular` ends it
  /// with its last one.
  void setActivationPolicy(platform::ActivationPolicy policy) override;
  /// Raises the windows that are open; what opens later asks for the front itself.
  void activate() override;
  void terminate() override;
};

}  // namespace valdrix::desktop
