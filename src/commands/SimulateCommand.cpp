#include "commands/SimulateCommand.h"

#include <iostream>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QString>

#include "desktop/ui/QtCanvas.h"
#include "desktop/ui/QtTextMetrics.h"
#include "sim/Simulate.h"

namespace valdrix::commands {

namespace {

/// Paints the simulated panel with the painter of the real one.
class QtFramePainter final : public sim::FramePainter {
 public:
  explicit QtFramePainter(const desktop::QtTextMetrics& textMetrics) : textMetrics_(textMetrics) {}

  [[nodiscard]] bool paint(const view::HostingView& content, const view::Rect& part, double scale,
                           const std::filesystem::path& file) override {
    QImage image(qRound(part.width * scale), qRound(part.height * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    painter.translate(-part.x, -part.y);
    desktop::QtCanvas canvas(painter, textMetrics_);
    content.draw(canvas, part);
    painter.end();
    return image.save(QString::fromStdString(file.string()), "PNG");
  }

 private:
  const desktop::QtTextMetrics& textMetrics_;
};

}  // namespace

int simulateScenario(const Simulate& command, int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const desktop::QtTextMetrics textMetrics;
  QtFramePainter painter(textMetrics);
  return sim::simulate({.file = command.file,
                        .framesFolder = command.framesFolder,
                        .scale = command.scale,
                        .textMetrics = &textMetrics},
                       std::cout, std::cerr, &painter);
}

}  // namespace valdrix::commands
