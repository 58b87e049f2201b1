#pragma once

#include <memory>

#include "app/AppDelegate.h"
#include "observation/Token.h"
#include "platform/Platform.h"

namespace valdrix {

/// The entry of the application on one platform: has the one `AppDelegate`, from which everything
/// else is reached, and declares the scenes, the item with the menu and the settings window.
class ValdrixApp {
 public:
  /// Makes the delegate with its services, then declares the scenes. `platform` must outlive the
  /// application.
  explicit ValdrixApp(const platform::Platform& platform);

  /// To be called once, from the running loop's first turn or just before it.
  void didFinishLaunching() { appDelegate_->applicationDidFinishLaunching(); }

  [[nodiscard]] AppDelegate& appDelegate() const { return *appDelegate_; }

 private:
  std::shared_ptr<AppDelegate> appDelegate_;
  // The scenes show the delegate's services, so they end first.
  Token menuBarExtra_;
  Token settings_;
};

}  // namespace valdrix
