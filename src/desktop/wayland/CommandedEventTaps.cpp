#include "desktop/wayland/CommandedEventTaps.h"

namespace valdrix::desktop {

namespace {

class SilentTap final : public platform::EventTap {
 public:
  void enable(bool isEnabled) override { isEnabled_ = isEnabled; }
  bool isEnabled() const override { return isEnabled_; }
  Token addToMainRunLoop() override {
    return Token([] {});
  }

 private:
  bool isEnabled_ = false;
};

}  // namespace

std::unique_ptr<platform::EventTap> CommandedEventTaps::createTap(platform::TapLocation,
                                                                  platform::TapPlacement,
                                                                  platform::TapOptions,
                                                                  std::uint32_t,
                                                                  platform::TapCallbacks) {
  return std::make_unique<SilentTap>();
}

}  // namespace valdrix::desktop
