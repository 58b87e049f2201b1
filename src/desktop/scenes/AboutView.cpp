#include "desktop/scenes/AboutView.h"

#include <utility>

#include <QPainter>
#include <QVBoxLayout>

#include "desktop/scenes/BundledImage.h"
#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr int imageSize = 96;
constexpr int gap = 16;
constexpr int nameGap = 4;
constexpr int margin = 24;
constexpr double titleFactor = 1.7;

constexpr auto dimmed = view::Prominence::secondary;

}  // namespace

void IconView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  icon_.paint(&painter, rect());
}

AboutView::AboutView(std::function<void()> didEdit, QWidget* parent)
    : QWidget(parent),
      name_({.fontFactor = titleFactor, .weight = QFont::DemiBold}),
      version_(
          {.fontFactor = formStyle::calloutFactor, .prominence = dimmed, .hasTabularDigits = true}),
      description_(
          {.fontFactor = formStyle::calloutFactor, .prominence = dimmed, .isWrapped = true}),
      legalNotice_(
          {.fontFactor = formStyle::smallFactor, .prominence = dimmed, .isWrapped = true}) {
  connect(&button_, &QAbstractButton::clicked, this, [this, edited = std::move(didEdit)] {
    if (action_) action_();
    edited();
  });
  arrange();
}

void AboutView::arrange() {
  for (QLabel* const text :
       {static_cast<QLabel*>(&name_), static_cast<QLabel*>(&version_),
        static_cast<QLabel*>(&description_), static_cast<QLabel*>(&legalNotice_)})
    text->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
  image_.setFixedSize(imageSize, imageSize);
  auto* const parts = new QVBoxLayout(this);
  parts->setContentsMargins(margin, margin, margin, margin);
  parts->setSpacing(gap);
  auto* const names = new QVBoxLayout;
  names->setSpacing(nameGap);
  names->addWidget(&name_);
  names->addWidget(&version_);
  parts->addStretch(1);
  parts->addWidget(&image_, 0, Qt::AlignHCenter);
  parts->addLayout(names);
  parts->addWidget(&description_);
  parts->addWidget(&button_, 0, Qt::AlignHCenter);
  parts->addStretch(1);
  parts->addWidget(&legalNotice_);
}

void AboutView::show(const view::AboutPanel& panel) {
  if (image_.isEmpty() || panel.image != shownImage_) image_.show(bundledImage(panel.image));
  shownImage_ = panel.image;
  name_.setUtf8(panel.name);
  version_.setUtf8(panel.version);
  description_.setUtf8(panel.description);
  button_.setLabel(panel.button.symbol, panel.button.title);
  legalNotice_.setUtf8(panel.legalNotice);
  action_ = panel.button.action;
}

}  // namespace valdrix::desktop
