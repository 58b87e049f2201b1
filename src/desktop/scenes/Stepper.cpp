#include "desktop/scenes/Stepper.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <utility>

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <QSignalBlocker>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr int arrowsWidth = 18;
constexpr int arrowsHeight = 26;
constexpr int ringGap = Stepper::ringGap;
constexpr int fieldGap = 8;
constexpr double arrowsRadius = 6;

/// Where the arrows are: one above the other at the trailing edge.
QRect arrows(const QRect& widget) {
  return {widget.right() + 1 - ringGap - arrowsWidth, (widget.height() - arrowsHeight) / 2,
          arrowsWidth, arrowsHeight};
}

/// Tells a spin box where its parts are; the desktop's style does everything else.
class ArrowPlaces final : public QProxyStyle {
 public:
  using QProxyStyle::QProxyStyle;
  [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                     SubControl part, const QWidget* widget) const override {
    if (control != CC_SpinBox) return QProxyStyle::subControlRect(control, option, part, widget);
    const QRect both = arrows(option->rect);
    switch (part) {
      case SC_SpinBoxUp:
        return {both.topLeft(), QSize(arrowsWidth, arrowsHeight / 2)};
      case SC_SpinBoxDown:
        return both.adjusted(0, arrowsHeight / 2, 0, 0);
      case SC_SpinBoxEditField:
        return option->rect.adjusted(0, 0, -arrowsWidth - ringGap - fieldGap, 0);
      default:
        return option->rect;
    }
  }
};

void paintArrow(QPainter& painter, const QRect& bounds, bool isUp, const QColor& color) {
  constexpr double halfWidth = 3.5;
  constexpr double halfHeight = 1.75;
  const QPointF middle = QRectF(bounds).center();
  const double tip = isUp ? -halfHeight : halfHeight;
  QPainterPath path(middle + QPointF(-halfWidth, -tip));
  path.lineTo(middle + QPointF(0, tip));
  path.lineTo(middle + QPointF(halfWidth, -tip));
  painter.strokePath(path, QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

int toInt(std::int64_t value) {
  using Limits = std::numeric_limits<int>;
  return static_cast<int>(
      std::clamp(value, std::int64_t{Limits::min()}, std::int64_t{Limits::max()}));
}

}  // namespace

Stepper::Stepper(std::function<void()> didEdit, QWidget* parent)
    : QSpinBox(parent), didEdit_(std::move(didEdit)) {
  auto* const places = new ArrowPlaces;
  places->setParent(this);
  setStyle(places);
  setFrame(false);
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::StrongFocus);
  setContextMenuPolicy(Qt::NoContextMenu);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  // The value is read and moved, not typed.
  lineEdit()->setReadOnly(true);
  lineEdit()->hide();
  connect(this, &QSpinBox::valueChanged, this, [this](int value) {
    if (value != stepper_.value) write(value);
  });
}

void Stepper::show(const view::Stepper& stepper) {
  const QSignalBlocker quiet(this);
  stepper_ = stepper;
  setAccessibleName(QString::fromStdString(stepper.title));
  setRange(toInt(stepper.minimum), toInt(stepper.maximum));
  setSingleStep(toInt(stepper.step));
  setValue(toInt(stepper.value));
  updateGeometry();
  update();
}

void Stepper::write(std::int64_t value) {
  if (stepper_.set) stepper_.set(value);
  didEdit_();
}

// Steps go out from the described value, which may lie outside the range, and are all told, though
// the next description has yet to come.
void Stepper::stepBy(int steps) {
  const std::int64_t distance = steps * stepper_.step;
  const std::int64_t near = std::clamp(stepper_.value, stepper_.minimum - std::abs(distance),
                                       stepper_.maximum + std::abs(distance));
  const std::int64_t wanted = std::clamp(near + distance, stepper_.minimum, stepper_.maximum);
  if (wanted == stepper_.value) return;
  stepper_.value = wanted;
  write(wanted);
}

QSpinBox::StepEnabled Stepper::stepEnabled() const {
  StepEnabled enabled = StepNone;
  if (stepper_.value < stepper_.maximum) enabled |= StepUpEnabled;
  if (stepper_.value > stepper_.minimum) enabled |= StepDownEnabled;
  return enabled;
}

QString Stepper::textFromValue(int) const { return QString::fromStdString(stepper_.valueText); }

QSize Stepper::sizeHint() const { return {arrowsWidth + 2 * ringGap, arrowsHeight + 2 * ringGap}; }

// There is no text to edit: all other keys are the window's.
void Stepper::keyPressEvent(QKeyEvent* event) {
  constexpr std::array keys = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
  if (std::ranges::find(keys, event->key()) != keys.end())
    QSpinBox::keyPressEvent(event);
  else
    event->ignore();
}

void Stepper::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QStyleOptionSpinBox option;
  initStyleOption(&option);
  const QPalette& colors = palette();
  const QRect both = arrows(rect());
  QPainterPath capsule;
  capsule.addRoundedRect(both, arrowsRadius, arrowsRadius);
  painter.fillPath(capsule, formStyle::controlFill(colors, false));
  for (const bool isUp : {true, false}) {
    const auto part = isUp ? QStyle::SC_SpinBoxUp : QStyle::SC_SpinBoxDown;
    const QRect half = style()->subControlRect(QStyle::CC_SpinBox, &option, part, this);
    const bool isEnabled = option.stepEnabled.testFlag(isUp ? StepUpEnabled : StepDownEnabled);
    const bool isActive = isEnabled && option.activeSubControls == part;
    if (isActive) {
      painter.setClipRect(half);
      painter.fillPath(capsule, formStyle::controlFill(colors, true));
      painter.setClipping(false);
    }
    QColor color = colors.color(QPalette::WindowText);
    if (!isEnabled) color.setAlphaF(0.35F);
    paintArrow(painter, half, isUp, color);
  }
  formStyle::paintHairline(painter, colors, QRectF(both).adjusted(0, arrowsHeight / 2.0, 0, 0));
  if (formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, colors, both.adjusted(-ringGap, -ringGap, ringGap, ringGap),
                              arrowsRadius + ringGap);
}

// The wheel scrolls the form, also where a stepper happens to come under the pointer.
void Stepper::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace valdrix::desktop
