#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace valdrix::tests {

/// A program that a test starts and that ends with it: asked to terminate, then killed after two
/// seconds. Its output goes to the test's own unless it is captured.
class ChildProcess {
 public:
  ChildProcess(const QString& program, const QStringList& arguments,
               const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] bool isRunning() const { return process_.state() == QProcess::Running; }
  [[nodiscard]] qint64 pid() const { return process_.processId(); }
  void kill();
  [[nodiscard]] QProcess& process() { return process_; }

  struct Result {
    int exitCode;
    QString output;
    QString errors;
  };
  /// Runs a program to its end, for ten seconds at most. Exit code -1: it did not start or end.
  [[nodiscard]] static Result run(
      const QString& program, const QStringList& arguments,
      const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

 private:
  QProcess process_;
};

}  // namespace valdrix::tests
