#include "desktop/scenes/Switch.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr double trackWidth = 36;
constexpr double trackHeight = 20;
constexpr double knobInset = 2;
constexpr int slideMilliseconds = 130;

}  // namespace

Switch::Switch(QWidget* parent) : QCheckBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  knob_.setStartValue(0.0);
  knob_.setEndValue(1.0);
  knob_.setEasingCurve(QEasingCurve::InOutSine);
  connect(&knob_, &QVariantAnimation::valueChanged, this, [this] { update(); });
  connect(this, &QCheckBox::toggled, this, [this] { slide(); });
}

void Switch::showState(bool isOn) {
  if (isOn == isChecked()) return;
  const QSignalBlocker quiet(this);
  setChecked(isOn);
  slide();
}

void Switch::slide() {
  const bool isAnimated =
      isVisible() && style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this);
  knob_.setDirection(isChecked() ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
  knob_.setDuration(isAnimated ? slideMilliseconds : 0);
  if (knob_.state() != QAbstractAnimation::Running) knob_.start();
  update();
}

QSize Switch::sizeHint() const {
  return {static_cast<int>(trackWidth + 2 * ringGap), static_cast<int>(trackHeight + 2 * ringGap)};
}

bool Switch::hitButton(const QPoint& position) const { return rect().contains(position); }

void Switch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double at =
      knob_.state() == QAbstractAnimation::Running ? knob_.currentValue().toDouble() : isChecked();
  const QRectF track((width() - trackWidth) / 2, (height() - trackHeight) / 2, trackWidth,
                     trackHeight);
  const QPalette& colors = palette();
  painter.setPen(Qt::NoPen);
  painter.setBrush(
      formStyle::mixed(formStyle::switchTrack(colors), formStyle::accentFill(colors), at));
  painter.drawRoundedRect(track, trackHeight / 2, trackHeight / 2);
  const double knobSize = trackHeight - 2 * knobInset;
  const double travel = trackWidth - trackHeight;
  const QRectF knob(track.left() + knobInset + travel * at, track.top() + knobInset, knobSize,
                    knobSize);
  painter.setBrush(QColor(0, 0, 0, 40));
  painter.drawEllipse(knob.adjusted(-0.5, 0, 0.5, 1));
  painter.setBrush(isDown() ? QColor(235, 235, 235) : QColor(Qt::white));
  painter.drawEllipse(knob);
  if (formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, colors, track.adjusted(-ringGap, -ringGap, ringGap, ringGap),
                              trackHeight / 2 + ringGap);
}

}  // namespace valdrix::desktop
