#include "bench/desktop/AgentStatus.h"

#include <QJsonDocument>

#include "tests/support/ChildProcess.h"

namespace valdrix::bench {

std::optional<QJsonObject> agentStatus() {
  const auto result = tests::ChildProcess::run(VALDRIX_PROGRAM, {"status"});
  if (result.exitCode != 0) return std::nullopt;
  return QJsonDocument::fromJson(result.output.toUtf8()).object();
}

double framesDrawn() { return agentStatus().value_or(QJsonObject())["framesDrawn"].toDouble(); }

}  // namespace valdrix::bench
