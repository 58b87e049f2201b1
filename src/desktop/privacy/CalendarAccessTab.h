#pragma once

#include <functional>
#include <vector>

#include "desktop/session/PrivacyRecord.h"
#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/EventStore.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// Where the user gives access to their calendars and takes it back, and sees what is read.
class CalendarAccessTab final : public view::TabView {
 public:
  /// `store` is the one behind `record`; both outlive this. `onAnswer` is called after the user has
  /// answered here.
  CalendarAccessTab(platform::EventStore& store, PrivacyRecord& record,
                    std::function<void()> onAnswer);

  [[nodiscard]] view::TabContent body() const override;

 private:
  struct State {
    PrivacyRecord::Answer answer = PrivacyRecord::Answer::none;
    platform::EventAuthorization status{};
    std::vector<platform::EventCalendar> calendars;
    bool operator==(const State&) const = default;
  };

  void refresh();
  void answer(bool isAllowed) const;
  [[nodiscard]] view::FormSection access() const;
  [[nodiscard]] view::FormSection sources() const;

  platform::EventStore& store_;
  PrivacyRecord& record_;
  std::function<void()> onAnswer_;
  Observed<State> state_;
  Token changes_;
};

}  // namespace valdrix::desktop
