#include "desktop/scenes/FormRowView.h"

#include <type_traits>
#include <utility>

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>

#include "desktop/scenes/FormButton.h"
#include "desktop/scenes/FormStyle.h"
#include "desktop/scenes/Stepper.h"
#include "desktop/scenes/Switch.h"
#include "desktop/scenes/TextLabel.h"
#include "desktop/scenes/ToggleTitle.h"
#include "desktop/scenes/ValueSlider.h"
#include "desktop/ui/QtPath.h"
#include "desktop/ui/SymbolPainting.h"

namespace valdrix::desktop {

namespace {

constexpr int titleGap = 12;
constexpr int badgeGap = 4;

constexpr TextLabel::Look titleLook{.isWrapped = true};
constexpr TextLabel::Look codeLook{
    .fontFactor = formStyle::calloutFactor, .isWrapped = true, .isCode = true};
constexpr TextLabel::Look valueLook{.prominence = view::Prominence::secondary,
                                    .hasTabularDigits = true};
constexpr TextLabel::Look endLook{.fontFactor = formStyle::smallFactor,
                                  .prominence = view::Prominence::secondary};

/// A row whose content is a `Content`.
template <class Content>
class RowOf : public FormRowView {
 public:
  void show(const view::FormRow& row) final { show(std::get<Content>(row.content)); }

 protected:
  RowOf() {
    auto* const layout = new QHBoxLayout(this);
    layout->setSpacing(titleGap);
    setMinimumHeight(formStyle::rowHeight);
    setPadding(formStyle::rowPadding);
  }

  /// Above and below what is in the row, and `ringGap` for a focus ring that its last control keeps
  /// free around itself.
  void setPadding(int padding, int ringGap = 0) {
    layout()->setContentsMargins(formStyle::groupInset, padding, formStyle::groupInset - ringGap,
                                 padding);
  }

  virtual void show(const Content& content) = 0;
  [[nodiscard]] QBoxLayout& line() { return static_cast<QBoxLayout&>(*layout()); }
};

class ToggleRow final : public RowOf<view::Toggle> {
 public:
  explicit ToggleRow(std::function<void()> didEdit) {
    setPadding(formStyle::rowPadding - 1, Switch::ringGap);
    line().addWidget(&title_, 1);
    line().addWidget(&switch_);
    // Not `clicked`: who flips it by the desktop's accessibility does not click.
    connect(&switch_, &QAbstractButton::toggled, this,
            [this, edited = std::move(didEdit)](bool isOn) {
              if (set_) set_(isOn);
              edited();
            });
  }

  [[nodiscard]] QWidget* control() const override { return const_cast<Switch*>(&switch_); }

 protected:
  void show(const view::Toggle& toggle) override {
    title_.setLabel(toggle.label);
    switch_.setAccessibleName(title_.text());
    switch_.showState(toggle.isOn);
    set_ = toggle.set;
  }

  // The whole row is the switch's label.
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) switch_.setDown(true);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return;
    switch_.setDown(false);
    if (rect().contains(event->position().toPoint())) switch_.click();
  }

 private:
  ToggleTitle title_;
  Switch switch_;
  std::function<void(bool)> set_;
};

/// The symbol of a badge, as tall as the text beside it.
class BadgeSymbol final : public QWidget {
 public:
  void show(const view::Badge& badge) {
    badge_ = badge;
    const int size = fontMetrics().ascent() + 2;
    setFixedSize(size, size);
    setVisible(badge.symbol.has_value());
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    if (badge_.symbol)
      paintSymbol(painter, *badge_.symbol, rect(),
                  formStyle::symbolInk(palette(), toQt(badge_.symbolColor)));
  }

 private:
  view::Badge badge_;
};

class LabeledRowView final : public RowOf<view::LabeledRow> {
 public:
  explicit LabeledRowView(bool isSelectable)
      : title_(titleLook), value_(valueLook), badgeLabel_({}) {
    if (isSelectable) value_.makeSelectable();
    line().addWidget(&title_, 1);
    line().addWidget(&value_);
    line().addWidget(&badge_);
    auto* const parts = new QHBoxLayout(&badge_);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->setSpacing(badgeGap);
    parts->addWidget(&symbol_);
    parts->addWidget(&badgeLabel_);
  }

  [[nodiscard]] QWidget* control() const override {
    return value_.isSelectable() && !value_.isHidden() ? const_cast<TextLabel*>(&value_) : nullptr;
  }

 protected:
  void show(const view::LabeledRow& row) override {
    title_.setUtf8(row.title);
    const auto* const badge = std::get_if<view::Badge>(&row.content);
    const auto* const value = std::get_if<view::ValueText>(&row.content);
    value_.setVisible(value);
    title_.setBuddy(value ? &value_ : nullptr);
    badge_.setVisible(badge);
    if (value) value_.setUtf8(value->text);
    if (!badge) return;
    symbol_.show(*badge);
    badgeLabel_.setUtf8(badge->label);
    badgeLabel_.setProminence(badge->prominence);
  }

 private:
  TextLabel title_;
  TextLabel value_;
  QWidget badge_;
  BadgeSymbol symbol_;
  TextLabel badgeLabel_;
};

class StepperRow final : public RowOf<view::Stepper> {
 public:
  explicit StepperRow(std::function<void()> didEdit)
      : title_(titleLook), value_(valueLook), stepper_(std::move(didEdit)) {
    title_.setBuddy(&stepper_);
    setPadding(formStyle::rowPadding / 2, Stepper::ringGap);
    line().setSpacing(valueGap);
    line().addWidget(&title_, 1);
    line().addWidget(&value_);
    line().addWidget(&stepper_);
  }

  [[nodiscard]] QWidget* control() const override { return const_cast<Stepper*>(&stepper_); }

 protected:
  void show(const view::Stepper& stepper) override {
    title_.setUtf8(stepper.title);
    value_.setUtf8(stepper.valueText);
    stepper_.show(stepper);
  }

 private:
  static constexpr int valueGap = 6;
  TextLabel title_;
  TextLabel value_;
  Stepper stepper_;
};

class SliderRow final : public RowOf<view::Slider> {
 public:
  explicit SliderRow(std::function<void()> didEdit)
      : minimum_(endLook), maximum_(endLook), slider_(std::move(didEdit)) {
    line().addWidget(&minimum_);
    line().addWidget(&slider_, 1);
    line().addWidget(&maximum_);
  }

  [[nodiscard]] QWidget* control() const override { return const_cast<ValueSlider*>(&slider_); }

 protected:
  void show(const view::Slider& slider) override {
    minimum_.setUtf8(slider.minimumLabel);
    maximum_.setUtf8(slider.maximumLabel);
    slider_.show(slider);
  }

 private:
  TextLabel minimum_;
  TextLabel maximum_;
  ValueSlider slider_;
};

class ButtonRow final : public RowOf<view::PushButton> {
 public:
  explicit ButtonRow(std::function<void()> didEdit) {
    setPadding(formStyle::rowPadding - FormButton::ringGap, FormButton::ringGap);
    line().addStretch(1);
    line().addWidget(&button_);
    // So that the enter key presses it too.
    button_.setAutoDefault(true);
    connect(&button_, &QAbstractButton::clicked, this, [this, edited = std::move(didEdit)] {
      if (action_) action_();
      edited();
    });
  }

  [[nodiscard]] QWidget* control() const override { return const_cast<FormButton*>(&button_); }

 protected:
  void show(const view::PushButton& button) override {
    button_.setTitle(QString::fromStdString(button.title));
    action_ = button.action;
  }

 private:
  FormButton button_;
  std::function<void()> action_;
};

class TextRow final : public RowOf<view::FormText> {
 public:
  TextRow(bool isCode, bool isSelectable) : text_(isCode ? codeLook : titleLook) {
    if (isCode || isSelectable) text_.makeSelectable();
    line().addWidget(&text_, 1);
  }

  [[nodiscard]] QWidget* control() const override {
    return text_.isSelectable() ? const_cast<TextLabel*>(&text_) : nullptr;
  }

 protected:
  void show(const view::FormText& text) override {
    text_.setUtf8(text.text);
    text_.setProminence(text.prominence);
  }

 private:
  TextLabel text_;
};

}  // namespace

FormRowView::FormRowView() = default;

std::unique_ptr<FormRowView> FormRowView::make(const view::FormRow& row,
                                               const FormContext& context) {
  return std::visit(
      [&]<class Content>(const Content& content) -> std::unique_ptr<FormRowView> {
        if constexpr (std::is_same_v<Content, view::Toggle>)
          return std::make_unique<ToggleRow>(context.didEdit);
        else if constexpr (std::is_same_v<Content, view::LabeledRow>)
          return std::make_unique<LabeledRowView>(context.hasSelectableTexts);
        else if constexpr (std::is_same_v<Content, view::Stepper>)
          return std::make_unique<StepperRow>(context.didEdit);
        else if constexpr (std::is_same_v<Content, view::Slider>)
          return std::make_unique<SliderRow>(context.didEdit);
        else if constexpr (std::is_same_v<Content, view::PushButton>)
          return std::make_unique<ButtonRow>(context.didEdit);
        else
          return std::make_unique<TextRow>(content.isCode, context.hasSelectableTexts);
      },
      row.content);
}

}  // namespace valdrix::desktop
