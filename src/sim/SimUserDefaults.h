#pragma once

#include "observation/Listeners.h"
#include "platform/TextUserDefaults.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Preferences in memory. Writes are traced.
class SimUserDefaults : public platform::TextUserDefaults {
 public:
  explicit SimUserDefaults(Trace& trace) : trace_(trace) {}

  void set(std::string_view key, Value value) override;
  [[nodiscard]] Token observeChanges(std::function<void()> block) override {
    return listeners_.add(std::move(block));
  }

  /// Stores any text under `key`, as a user with an editor would.
  void setFromOutside(std::string_view key, std::string text);
  /// Removes the user's value, so that the registered default shows.
  void removeFromOutside(std::string_view key);

 protected:
  [[nodiscard]] std::optional<std::string_view> storedText(std::string_view key) const override;

 private:
  Trace& trace_;
  std::map<std::string, std::string, std::less<>> stored_;
  Listeners<> listeners_;
};

}  // namespace valdrix::sim
