#pragma once

#include <memory>

#include "app/AppDelegate.h"
#include "platform/Platform.h"

namespace valdrix {

/// The entry of the application on one platform: has the one `AppDelegate`, from which everything
/// else is reached.
class ValdrixApp {
 public:
  /// Makes the delegate with its services. `platform` must outlive the application.
  explicit ValdrixApp(const platform::Platform& platform)
      : appDelegate_(AppDelegate::make(platform)) {}

  /// To be called once, from the running loop's first turn or just before it.
  void didFinishLaunching() { appDelegate_->applicationDidFinishLaunching(); }

  [[nodiscard]] AppDelegate& appDelegate() const { return *appDelegate_; }

 private:
  std::shared_ptr<AppDelegate> appDelegate_;
};

}  // namespace valdrix
