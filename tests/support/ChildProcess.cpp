#include "tests/support/ChildProcess.h"

namespace valdrix::tests {

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_.start(program, arguments);
  process_.waitForStarted();
}

ChildProcess::~ChildProcess() { terminate(); }

bool ChildProcess::terminate() {
  if (process_.state() == QProcess::NotRunning) return true;
  process_.terminate();
  if (process_.waitForFinished(2000)) return true;
  kill();
  return false;
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
  if (!process.waitForStarted() || !process.waitForFinished(10000)) {
    process.kill();
    process.waitForFinished(1000);
    return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
  }
  return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          process.readAllStandardOutput(), process.readAllStandardError()};
}

}  // namespace valdrix::tests
