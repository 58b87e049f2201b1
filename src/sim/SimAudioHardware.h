#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "observation/Lifetime.h"
#include "platform/AudioHardware.h"
#include "platform/AudioPropertyListeners.h"
#include "sim/ManualRunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Audio devices in memory. Writes, and what the user and other programs do, take effect at once or
/// at the loop's next turn, and listeners run at the turn after. Writes are traced.
class SimAudioHardware final : public platform::AudioHardware {
 public:
  using AudioObjectID = platform::AudioObjectID;

  SimAudioHardware(Trace& trace, ManualRunLoop& runLoop);

  /// Plugs a device in; the first becomes the default. Without a `volume` the device has none.
  AudioObjectID addDevice(std::string_view name, std::optional<float> volume, bool isMuted = false);
  /// Unplugs it; of those that remain, the oldest becomes the default if it was that.
  void removeDevice(AudioObjectID device);
  /// The latest device of that name, present or not; 0 when there never was one.
  [[nodiscard]] AudioObjectID device(std::string_view name) const;

  /// The user chooses where sound goes. 0, or a device that is not there: nowhere.
  void setDefaultDevice(AudioObjectID device);
  /// Another program changes a device. Does nothing to one that is not there.
  void changeVolume(AudioObjectID device, std::optional<float> volume);
  void changeMute(AudioObjectID device, bool isMuted);

  /// While set, every read or write of a device fails.
  void setReadsFail(bool fail) { readsFail_ = fail; }
  void setWritesFail(bool fail) { writesFail_ = fail; }
  /// How many seconds after the fact what is written takes effect and what others change is known:
  /// 0 as long as the sound server is well, infinity while it hangs. Once that ends, all that was
  /// held back happens in its order.
  void setAnswerDelay(double delay);
  /// While set, writes are accepted and come to nothing.
  void setWritesAreLost(bool areLost) { writesAreLost_ = areLost; }
  /// Calls the listeners of a property that did not change.
  void notify(AudioObjectID object, const platform::AudioObjectPropertyAddress& address);

  [[nodiscard]] platform::AudioStatus getPropertyData(
      AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      std::uint32_t& value) const override;
  [[nodiscard]] platform::AudioStatus getPropertyData(
      AudioObjectID object, const platform::AudioObjectPropertyAddress& address,
      float& value) const override;
  platform::AudioStatus setPropertyData(AudioObjectID object,
                                        const platform::AudioObjectPropertyAddress& address,
                                        std::uint32_t value) override;
  platform::AudioStatus setPropertyData(AudioObjectID object,
                                        const platform::AudioObjectPropertyAddress& address,
                                        float value) override;
  [[nodiscard]] Token addPropertyListenerBlock(AudioObjectID object,
                                               const platform::AudioObjectPropertyAddress& address,
                                               std::function<void()> block) override;

 private:
  struct Device {
    std::string name;
    std::optional<float> volume;
    bool isMuted = false;
    bool isPresent = true;
  };

  [[nodiscard]] Device* present(AudioObjectID device);
  [[nodiscard]] const Device* present(AudioObjectID device) const;
  /// Runs `change` when the sound server says so; while it is well, now.
  void happen(std::function<void()> change);
  void traceWrite(AudioObjectID object, std::string_view what, platform::AudioStatus status);

  Trace& trace_;
  ManualRunLoop& runLoop_;
  platform::AudioPropertyListeners listeners_;
  std::map<AudioObjectID, Device> devices_;
  AudioObjectID defaultDevice_ = 0;
  bool readsFail_ = false;
  bool writesFail_ = false;
  bool writesAreLost_ = false;
  double answerDelay_ = 0;
  std::deque<std::function<void()>> heldBack_;
  std::vector<Token> late_;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
