#pragma once

#include <functional>
#include <vector>

#include <QScrollArea>

#include "view/Form.h"

class QVBoxLayout;

namespace valdrix::desktop {

class FormSectionView;

/// A form in the grouped style, which scrolls when it is taller than its place. It shows one
/// description after the other by changing what is different, so that focus, scroll position and a
/// drag outlast it.
class FormView final : public QScrollArea {
 public:
  /// `didEdit` is called after each action of the user: the next description, which may be the old
  /// one, says what the control then shows.
  explicit FormView(std::function<void()> didEdit, QWidget* parent = nullptr);

  /// Shows this from now on; the focus stays where it is, or goes to the nearest control left.
  void show(const view::Form& form);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// True when controls came, went or changed their places.
  bool update(const view::Form& form);
  /// What takes the keyboard's input, from top to bottom.
  [[nodiscard]] std::vector<QWidget*> controls() const;
  void keepGroupsInPlace();
  void orderFocus();

  std::function<void()> didEdit_;
  QVBoxLayout* sections_;
  std::vector<FormSectionView*> views_;
};

}  // namespace valdrix::desktop
