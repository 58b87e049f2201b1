#pragma once

#include "desktop/keys/KeyCustody.h"
#include "desktop/session/AgentAnswer.h"

namespace valdrix::commands {

/// What has become of handing keys over or giving them back, for the user. No text as long as it
/// goes on.
[[nodiscard]] desktop::AgentAnswer custodyReport(const desktop::KeyCustody::State& state);

}  // namespace valdrix::commands
