#include "desktop/ui/SymbolIcon.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QIconEngine>
#include <QPainter>

#include "desktop/ui/QtPath.h"
#include "view/SymbolArt.h"

namespace valdrix::desktop {

namespace {

class SymbolIconEngine final : public QIconEngine {
 public:
  SymbolIconEngine(std::string name, const QColor& color, view::FontWeight weight)
      : name_(std::move(name)), color_(color), weight_(weight) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    constexpr float disabledOpacity = 0.4F;
    QColor color = color_;
    if (mode == QIcon::Disabled) color.setAlphaF(color.alphaF() * disabledOpacity);
    paintSymbol(*painter, name_, rect, color, weight_);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, {{}, size}, mode, state);
    return picture;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new SymbolIconEngine(*this); }

 private:
  std::string name_;
  QColor color_;
  view::FontWeight weight_;
};

}  // namespace

void paintSymbol(QPainter& painter, std::string_view name, const QRectF& bounds,
                 const QColor& color, view::FontWeight weight) {
  const view::Symbol* symbol = view::symbolNamed(name, weight);
  if (!symbol) return;
  const double scale =
      std::min(bounds.width() / symbol->size.width, bounds.height() / symbol->size.height);
  const view::Point origin{bounds.center().x() - symbol->size.width * scale / 2,
                           bounds.center().y() - symbol->size.height * scale / 2};
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  for (const auto& part : symbol->parts) {
    const QPainterPath path = toQt(part.path.transformed(scale, origin));
    const auto cap = part.hasRoundCaps ? Qt::RoundCap : Qt::FlatCap;
    const auto join = part.hasRoundCaps ? Qt::RoundJoin : Qt::MiterJoin;
    if (part.isStroked)
      painter.strokePath(path, QPen(color, part.lineWidth * scale, Qt::SolidLine, cap, join));
    else
      painter.fillPath(path, color);
  }
  painter.restore();
}

QIcon symbolIcon(std::string_view name, const QColor& color, view::FontWeight weight) {
  if (!view::symbolNamed(name, weight)) return {};
  return QIcon(new SymbolIconEngine(std::string(name), color, weight));
}

}  // namespace valdrix::desktop
