#include "desktop/shortcuts/ToolRunner.h"

#include <utility>

#include <QMetaObject>
#include <QProcessEnvironment>

namespace valdrix::desktop {

namespace {

constexpr int mostRunMilliseconds = 5000;

}  // namespace

ToolRunner::ToolRunner(QString program) : program_(std::move(program)) {
  limit_.setSingleShot(true);
  limit_.setInterval(mostRunMilliseconds);
  process_.setStandardInputFile(QProcess::nullDevice());
  process_.setStandardErrorFile(QProcess::nullDevice());
  QObject::connect(&limit_, &QTimer::timeout, &process_, &QProcess::kill);
  QObject::connect(&process_, &QProcess::finished, &process_,
                   [this](int code, QProcess::ExitStatus status) {
                     const bool isDone = status == QProcess::NormalExit && code == 0;
                     end(isDone ? std::optional(process_.readAllStandardOutput()) : std::nullopt);
                   });
  QObject::connect(&process_, &QProcess::errorOccurred, &process_,
                   [this](QProcess::ProcessError error) {
                     if (error == QProcess::FailedToStart) end(std::nullopt);
                   });
}

ToolRunner::~ToolRunner() {
  process_.disconnect();
  process_.kill();
  process_.waitForFinished();
}

void ToolRunner::run(const QStringList& words, const QStringList& environment, Completion done) {
  runs_.push_back({words, environment, std::move(done)});
  if (!isRunning_) startNext();
}

void ToolRunner::startNext() {
  isRunning_ = !runs_.empty();
  if (!isRunning_) return;
  const auto& next = runs_.front();
  if (next.words.isEmpty()) return end(QByteArray());
  auto environment = QProcessEnvironment::systemEnvironment();
  // Others would not let every character through.
  environment.insert("LC_ALL", "C.UTF-8");
  for (const auto& setting : next.environment)
    environment.insert(setting.section('=', 0, 0), setting.section('=', 1));
  process_.setProcessEnvironment(environment);
  limit_.start();
  process_.start(program_, next.words);
}

// In a turn of its own: the process may not be started anew from within its own signals.
void ToolRunner::end(const std::optional<QByteArray>& output) {
  limit_.stop();
  const auto conclude = [this, output] {
    const auto done = std::move(runs_.front().done);
    runs_.pop_front();
    startNext();
    done(output);
  };
  QMetaObject::invokeMethod(&process_, conclude, Qt::QueuedConnection);
}

}  // namespace valdrix::desktop
