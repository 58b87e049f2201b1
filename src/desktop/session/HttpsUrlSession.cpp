#include "desktop/session/HttpsUrlSession.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include "observation/Lifetime.h"

namespace valdrix::desktop {

namespace {

using Completion = std::function<void(std::optional<platform::UrlResponse>)>;

/// The largest body, and the line before it.
constexpr qsizetype largestOutput = 64 * 1024 + 16;
/// The longest that a transfer may be asked to take.
constexpr double longestTimeout = 3600;
/// How much longer the program may take to end.
constexpr double grace = 1;

/// One run of the program, which ends with this.
class Transfer {
 public:
  Transfer(platform::RunLoop& runLoop, Completion completion)
      : runLoop_(runLoop), completion_(std::move(completion)) {
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, &process_, &QProcess::kill);
    QObject::connect(&process_, &QProcess::readyReadStandardOutput, &process_, [this] { read(); });
    QObject::connect(&process_, &QProcess::finished, &process_, [this] { ended(); });
    QObject::connect(&process_, &QProcess::errorOccurred, &process_,
                     [this](QProcess::ProcessError error) {
                       if (error == QProcess::FailedToStart) ended();
                     });
  }
  ~Transfer() {
    process_.disconnect();
    process_.kill();
    process_.waitForFinished();
  }
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  void start(const QString& program, const platform::UrlRequest& request) {
    const double seconds = request.timeout > 0 ? std::min(request.timeout, longestTimeout) : 0;
    limit_.start(static_cast<int>((seconds + grace) * 1000));
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(program, {QString::fromStdString(request.url), QString::number(seconds)});
  }

 private:
  void read() {
    output_ += process_.readAllStandardOutput();
    if (output_.size() > largestOutput) process_.kill();
  }

  // In another turn of the loop, because the completion may end this.
  void ended() {
    limit_.stop();
    runLoop_.async(lifetime_.weak([this] {
      if (const auto completion = std::exchange(completion_, nullptr)) completion(response());
    }));
  }

  [[nodiscard]] std::optional<platform::UrlResponse> response() const {
    const bool isWhole = process_.error() == QProcess::UnknownError &&
                         process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
    const auto line = output_.indexOf('\n');
    bool isNumber = false;
    const int status = output_.left(line).toInt(&isNumber);
    if (!isWhole || line < 0 || !isNumber) return std::nullopt;
    return platform::UrlResponse{status, output_.mid(line + 1).toStdString()};
  }

  platform::RunLoop& runLoop_;
  Completion completion_;
  QByteArray output_;
  QTimer limit_;
  QProcess process_;
  Lifetime lifetime_;
};

}  // namespace

HttpsUrlSession::HttpsUrlSession(platform::RunLoop& runLoop, QString program)
    : runLoop_(runLoop), program_(std::move(program)) {}

QString HttpsUrlSession::installedProgram() {
  return QCoreApplication::applicationDirPath() + "/valdrix-fetch";
}

Token HttpsUrlSession::data(
    const platform::UrlRequest& request,
    std::function<void(std::optional<platform::UrlResponse> response)> completion) {
  auto transfer = std::make_shared<Transfer>(runLoop_, std::move(completion));
  transfer->start(program_, request);
  return Token([transfer = std::move(transfer)]() mutable { transfer.reset(); });
}

}  // namespace valdrix::desktop
