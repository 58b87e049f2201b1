#pragma once

#include "desktop/session/AgentObject.h"
#include "desktop/session/SessionBus.h"
#include "desktop/session/SettingsRequest.h"

namespace valdrix::desktop {

/// The running agent's name on the session bus: org.valdrix.Agent, whose object is an
/// `AgentObject`. A second start finds the name taken and has the first show its settings. Without
/// a bus the agent is alone and mute until there is one.
class SingleInstance {
 public:
  enum class Claim {
    only,        ///< this is the agent, or nobody can tell
    handedOver,  ///< another one runs and has been told; this start should end
    unanswered,  ///< another one runs but does not react
  };

  /// `bus` and `object` outlive this.
  SingleInstance(SessionBus& bus, AgentObject& object) : bus_(bus), object_(object) {}

  /// Takes the name, or hands `settings` over to its owner, within two seconds or so.
  [[nodiscard]] Claim claim(const SettingsRequest& settings);

 private:
  SessionBus& bus_;
  AgentObject& object_;
  Token connections_;
};

}  // namespace valdrix::desktop
