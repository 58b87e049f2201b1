// Forms as widgets: what stays when the description changes, and what the user's actions tell.

#include <cmath>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include <QAbstractSlider>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>

#include "desktop/scenes/FormView.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

view::FormRow toggle(
    const std::string& title, bool isOn = false, std::function<void(bool)> set = [](bool) {}) {
  return {view::Toggle{.label = {.title = title}, .isOn = isOn, .set = std::move(set)}, title};
}

view::FormRow badge(const std::string& title) {
  return {view::LabeledRow{title, view::Badge{.symbol = "xmark.circle.fill", .label = "Refusé"}}};
}

view::FormRow button(const std::string& title) {
  return {view::PushButton{title, [] {}}};
}

view::FormRow slider(double value, std::function<void(double)> set) {
  return {view::Slider{.title = "Durée",
                       .value = value,
                       .minimum = 0.4,
                       .maximum = 3.0,
                       .step = 0.1,
                       .minimumLabel = "0,4 s",
                       .maximumLabel = "3,0 s",
                       .set = std::move(set)}};
}

class FormViewTest : public testing::Test {
 protected:
  FormViewTest() {
    form_.resize(520, 460);
    form_.QWidget::show();
    form_.activateWindow();
    EXPECT_TRUE(tests::waitFor([this] { return form_.isActiveWindow(); }));
  }

  void show(std::vector<view::FormRow> rows) {
    form_.show({{{.header = "Section", .rows = std::move(rows), .footer = "Pied de page."}}});
    QApplication::processEvents();
  }

  /// The control of that name, as who cannot see would find it.
  template <class Widget>
  Widget& control(const QString& name) {
    for (auto* const widget : form_.findChildren<Widget*>()) {
      const auto* accessible = QAccessible::queryAccessibleInterface(widget);
      if (accessible && accessible->text(QAccessible::Name) == name) return *widget;
    }
    ADD_FAILURE() << "no control named " << name.toStdString();
    std::abort();
  }

  /// The names along the way of the tab key from one control, until it comes around.
  std::vector<std::string> wayOfFocusFrom(QWidget& first) {
    std::vector<std::string> names;
    first.setFocus();
    do {
      const auto* accessible = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
      names.push_back(accessible->text(QAccessible::Name).toStdString());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (QApplication::focusWidget() != &first && names.size() < 20);
    return names;
  }

  int edits_ = 0;
  FormView form_{{.didEdit = [this] { ++edits_; }}};
};

TEST_F(FormViewTest, ChangesInPlaceKeepFocusAndScroll) {
  std::vector<view::FormRow> rows;
  for (int i = 0; i < 20; ++i) rows.push_back(toggle("Calendrier " + std::to_string(i)));
  show(rows);
  auto& focused = control<QCheckBox>("Calendrier 12");
  focused.setFocus();
  form_.verticalScrollBar()->setValue(200);

  std::get<view::Toggle>(rows[12].content).isOn = true;
  rows.erase(rows.begin());
  rows.insert(rows.begin() + 3, toggle("Nouveau"));
  std::swap(rows[14], rows[15]);
  show(rows);
  EXPECT_EQ(QApplication::focusWidget(), &focused);
  EXPECT_EQ(&control<QCheckBox>("Calendrier 12"), &focused);
  EXPECT_TRUE(focused.isChecked());
  EXPECT_EQ(form_.verticalScrollBar()->value(), 200);
  const auto way = wayOfFocusFrom(control<QCheckBox>("Calendrier 1"));
  ASSERT_EQ(way.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(way[i], rows[i].id);
  EXPECT_EQ(edits_, 0);
}

TEST_F(FormViewTest, EveryControlIsNamedAndReachedInOrder) {
  show({badge("Accès"),
        button("Ouvrir R&D"),
        toggle("Réunions & comités"),
        {view::Stepper{
            .title = "Fenêtre", .valueText = "7 jours", .value = 7, .maximum = 9, .set = {}}},
        slider(0.9, [](double) {}),
        {view::FormText{"Aucun calendrier disponible."}}});
  EXPECT_THAT(wayOfFocusFrom(control<QPushButton>("Ouvrir R&D")),
              ElementsAre("Ouvrir R&D", "Réunions & comités", "Fenêtre", "Durée"));
  const auto* stepper = QAccessible::queryAccessibleInterface(&control<QSpinBox>("Fenêtre"));
  EXPECT_EQ(stepper->role(), QAccessible::SpinBox);
  EXPECT_EQ(stepper->text(QAccessible::Value), "7 jours");
  auto* line = QAccessible::queryAccessibleInterface(&control<QSlider>("Durée"));
  EXPECT_EQ(line->role(), QAccessible::Slider);
  ASSERT_NE(line->valueInterface(), nullptr);
  EXPECT_DOUBLE_EQ(line->valueInterface()->currentValue().toDouble(), 0.9);
}

TEST_F(FormViewTest, TextsAreCopiedAndLinksFollowedByKeys) {
  const std::string command = "gsettings set org.gnome.settings-daemon.plugins.media-keys \"[]\"";
  int follows = 0;
  FormView form({.didEdit = [] {}, .hasSelectableTexts = true});
  form.show({{{.header = "Section",
               .rows = {{view::LabeledRow{"Muet", view::ValueText{"valdrix key mute"}}},
                        {view::FormText{.text = command, .isCode = true}}},
               .footer = "Pied de page.",
               .link = view::PushButton{"Gérer…", [&] { ++follows; }}}}});
  const auto isFirst = [](const QLabel* label) { return label->text() == "valdrix key mute"; };
  form.QWidget::show();
  form.activateWindow();
  ASSERT_TRUE(tests::waitFor([&] { return form.isActiveWindow(); }));
  const auto labels = form.findChildren<QLabel*>();
  (*std::ranges::find_if(labels, isFirst))->setFocus();
  std::vector<std::string> copied;
  for (int i = 0; i < 2; ++i) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    copied.push_back(QApplication::clipboard()->text().toStdString());
  }
  EXPECT_THAT(copied, ElementsAre(command, "Pied de page."));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(follows, 1);
}

TEST_F(FormViewTest, RowThatGoesHandsItsFocusOn) {
  show({badge("Accès"), button("Autoriser"), badge("Accessibilité"), toggle("Lancer")});
  control<QPushButton>("Autoriser").setFocus();
  show({badge("Accès"), badge("Accessibilité"), toggle("Lancer")});
  EXPECT_EQ(QApplication::focusWidget(), &control<QCheckBox>("Lancer"));
}

TEST_F(FormViewTest, FlipIsToldAndFallsBackWhenItIsRefused) {
  std::vector<bool> told;
  const auto row = toggle("Lancer", false, [&](bool isOn) { told.push_back(isOn); });
  show({row});
  auto& box = control<QCheckBox>("Lancer");
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_TRUE(box.isChecked());
  EXPECT_EQ(edits_, 1);
  show({row});
  EXPECT_FALSE(box.isChecked());
  // A click on the title is one on the switch.
  QTest::mouseClick(box.parentWidget(), Qt::LeftButton, {}, {20, 20});
  EXPECT_THAT(told, ElementsAre(true, true));
}

TEST_F(FormViewTest, StepperMovesWithinItsRange) {
  struct Case {
    std::int64_t value;
    std::vector<Qt::Key> keys;
    std::vector<std::int64_t> told;
  };
  const Case cases[] = {
      {4, {Qt::Key_Up}, {5}},
      {4, {Qt::Key_Down, Qt::Key_Down}, {3, 2}},
      {9, {Qt::Key_Up, Qt::Key_Up}, {10}},
      {1, {Qt::Key_Down, Qt::Key_Return, Qt::Key_5}, {}},
      {2, {Qt::Key_PageDown}, {1}},
      {42, {Qt::Key_Down}, {10}},
      {-3, {Qt::Key_Up}, {1}},
      {std::numeric_limits<std::int64_t>::max(), {Qt::Key_Down}, {10}},
  };
  for (const auto& [value, keys, expected] : cases) {
    SCOPED_TRACE(value);
    std::vector<std::int64_t> told;
    show({{view::Stepper{.title = "Nombre",
                         .valueText = std::to_string(value),
                         .value = value,
                         .minimum = 1,
                         .maximum = 10,
                         .set = [&](std::int64_t to) { told.push_back(to); }}}});
    EXPECT_THAT(told, IsEmpty());
    for (const auto key : keys) QTest::keyClick(&control<QSpinBox>("Nombre"), key);
    EXPECT_EQ(told, expected);
  }
}

TEST_F(FormViewTest, SliderTellsEachStepOfADragAndIsNotMovedByItsEcho) {
  std::vector<double> told;
  const auto set = [&](double value) { told.push_back(value); };
  show({slider(0.4, set)});
  EXPECT_THAT(told, IsEmpty());
  auto& line = control<QSlider>("Durée");
  QStyleOptionSlider option;
  option.initFrom(&line);
  option.maximum = line.maximum();
  option.subControls = QStyle::SC_All;
  const QPoint knob =
      line.style()
          ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &line)
          .center();
  QTest::mousePress(&line, Qt::LeftButton, {}, knob);
  for (int x = knob.x(); x < line.width(); ++x) {
    const auto count = told.size();
    QTest::mouseMove(&line, {x, knob.y()});
    if (told.size() > count) show({slider(told.back(), set)});
  }
  EXPECT_TRUE(line.isSliderDown());
  QTest::mouseRelease(&line, Qt::LeftButton, {}, {line.width(), knob.y()});
  ASSERT_EQ(told.size(), 26U);
  for (std::size_t i = 0; i < told.size(); ++i)
    EXPECT_EQ(told[i], (5.0 + static_cast<double>(i)) / 10);
  EXPECT_EQ(line.value(), 26);

  told.clear();
  for (const double odd : {-1.0, 99.0, std::nan("")}) show({slider(odd, set)});
  EXPECT_EQ(line.value(), 0);
  EXPECT_THAT(told, IsEmpty());
}

}  // namespace
}  // namespace valdrix::desktop
