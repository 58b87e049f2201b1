// The least that a Qt program with a window costs: a transparent one of the panel's size and kind,
// with one black rectangle where the panel has its own.
// Usage: yardstick_empty_window X Y

#include <cstdlib>

#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>

namespace {

class EmptyWindow final : public QRasterWindow {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect((width() - 200) / 2, 0, 200, 32, Qt::black);
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const QGuiApplication application(argc, argv);
  EmptyWindow window;
  QSurfaceFormat format;
  format.setAlphaBufferSize(8);
  window.setFormat(format);
  window.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                  Qt::WindowDoesNotAcceptFocus);
  window.setGeometry(std::atoi(argv[1]), std::atoi(argv[2]), 720, 1000);
  window.show();
  return QGuiApplication::exec();
}
