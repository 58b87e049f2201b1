#include "tests/support/ChildProcess.h"

namespace valdrix::tests {

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_.start(program, arguments);
  process_.waitForStarted();
}

ChildProcess::~ChildProcess() {
  process_.terminate();
  if (!process_.waitForFinished(2000)) kill();
}

void ChildProcess::kill() {
  process_.kill();
  process_.waitForFinished(2000);
}

ChildProcess::Result ChildProcess::run(const QString& program, const QStringList& arguments,
                                       const QProcessEnvironment& environment) {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  const bool hasEnded = process.waitForFinished(10000);
  if (!hasEnded) {
    process.kill();
    process.waitForFinished(1000);
  }
  const bool hasExited = hasEnded && process.exitStatus() == QProcess::NormalExit;
  return {hasExited ? process.exitCode() : -1, process.readAllStandardOutput(),
          process.readAllStandardError()};
}

}  // namespace valdrix::tests
