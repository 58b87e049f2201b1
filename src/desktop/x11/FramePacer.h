#pragma once

#include <functional>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

namespace valdrix::desktop {

/// Decides when frames are drawn: at the next turn of the loop when the latest frame is older than
/// one refresh of the screen, else one refresh after it. No timer runs while no frame is wanted.
class FramePacer : public QObject {
 public:
  explicit FramePacer(std::function<void()> drawFrame);

  /// In Hz, above 0.
  void setRefreshRate(double refreshRate) { refreshRate_ = refreshRate; }
  /// A frame is wanted; asking again before it is drawn changes nothing.
  void request();
  void cancel();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  std::function<void()> drawFrame_;
  double refreshRate_ = 60;
  /// When the latest frame was due, in milliseconds of `clock_`.
  double latest_ = -1e9;
  double due_ = 0;
  QElapsedTimer clock_;
  QBasicTimer timer_;
};

}  // namespace valdrix::desktop
