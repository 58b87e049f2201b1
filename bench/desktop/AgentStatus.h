#pragma once

#include <optional>

#include <QJsonObject>

namespace valdrix::bench {

/// What the running agent says about itself; nothing when none answers.
[[nodiscard]] std::optional<QJsonObject> agentStatus();
/// How many frames it has drawn; 0 when none answers.
[[nodiscard]] double framesDrawn();

}  // namespace valdrix::bench
