#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace valdrix::desktop {

/// Runs a small program of the system's, one run at a time, each for five seconds at most. Main
/// thread only. What still runs is ended with this.
class ToolRunner {
 public:
  /// What it printed; none when there is no such program, or it failed or took too long.
  using Completion = std::function<void(const std::optional<QByteArray>& output)>;

  explicit ToolRunner(QString program);
  ~ToolRunner();
  ToolRunner(const ToolRunner&) = delete;
  ToolRunner& operator=(const ToolRunner&) = delete;

  /// Runs it with these words, and with these settings of its environment, written NAME=VALUE,
  /// after what was asked for before. Without words nothing is run and nothing printed. Calls
  /// `done` when it has ended, never before this has returned.
  void run(const QStringList& words, const QStringList& environment, Completion done);

 private:
  struct Run {
    QStringList words;
    QStringList environment;
    Completion done;
  };

  void startNext();
  void end(const std::optional<QByteArray>& output);

  const QString program_;
  std::deque<Run> runs_;
  bool isRunning_ = false;
  QProcess process_;
  QTimer limit_;
};

}  // namespace valdrix::desktop
