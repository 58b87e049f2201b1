#pragma once

#include <QVariantList>

#include "desktop/session/AgentAnswer.h"
#include "desktop/session/AgentObject.h"
#include "desktop/session/SessionBus.h"
#include "desktop/session/SettingsRequest.h"
#include "view/Geometry.h"

namespace valdrix::desktop {

/// Speaks to the running agent on behalf of a command. Each call ends within two seconds or so; an
/// agent that could not be asked has not done what it was asked, and the text says so in one line.
class AgentClient {
 public:
  /// `bus` outlives this.
  explicit AgentClient(SessionBus& bus) : bus_(bus) {}

  /// The agent's observable state.
  [[nodiscard]] AgentAnswer status();
  /// Has the agent ask the user for access to the calendars, unless that is settled.
  [[nodiscard]] AgentAnswer requestCalendarAccess();
  /// Opens the window of the agent that is asked for.
  [[nodiscard]] AgentAnswer openSettings(const SettingsRequest& request);
  /// Has the agent take a media key as if it had been pressed. Not done: it passed the key on.
  [[nodiscard]] AgentAnswer pressKey(const AgentObject::KeyPress& press);
  /// Has the agent show the indicator of the present level.
  [[nodiscard]] AgentAnswer showVolume();
  [[nodiscard]] AgentAnswer showBrightness();
  /// What the agent knows of every screen and its camera housing.
  [[nodiscard]] AgentAnswer describeHousings();
  /// Has the agent show a housing of that size, in points, for as long as this process is on the
  /// bus, or until another preview.
  [[nodiscard]] AgentAnswer previewHousing(view::Size size);
  /// Has the agent begin to hand the desktop's keys over, or to give them back.
  [[nodiscard]] AgentAnswer entrustKeys();
  [[nodiscard]] AgentAnswer restoreKeys();
  /// What has become of that; done without a text as long as it goes on.
  [[nodiscard]] AgentAnswer describeCustody();
  /// Whether an agent is there to be asked. None is where there is no bus.
  [[nodiscard]] bool isAgentThere();
  /// Asks the agent to end.
  [[nodiscard]] AgentAnswer quit();

 private:
  [[nodiscard]] AgentAnswer ask(const char* method, const QVariantList& arguments = {});

  SessionBus& bus_;
};

}  // namespace valdrix::desktop
