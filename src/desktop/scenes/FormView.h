#pragma once

#include <vector>

#include <QScrollArea>

#include "desktop/scenes/FormRowView.h"
#include "view/Form.h"

class QVBoxLayout;

namespace valdrix::desktop {

class FormSectionView;

/// A form in the grouped style, which scrolls when it is taller than its place. It shows one
/// description after the other by changing what is different, so that focus, scroll position and a
/// drag outlast it.
class FormView final : public QScrollArea {
 public:
  /// `context.didEdit` is called after each action of the user: the next description, which may be
  /// the old one, says what the control then shows.
  explicit FormView(FormContext context, QWidget* parent = nullptr);

  /// Shows this from now on; the focus stays where it is, or goes to the nearest control left.
  void show(const view::Form& form);
  /// Scrolls by the key, if it is one that scrolls a page: arrows up and down, page up and down,
  /// home and end. Whether it is.
  bool scrollBy(const QKeyEvent& key);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// True when controls came, went or changed their places.
  bool update(const view::Form& form);
  /// What takes the keyboard's input, from top to bottom.
  [[nodiscard]] std::vector<QWidget*> controls() const;
  void keepGroupsInPlace();
  void orderFocus();

  FormContext context_;
  QVBoxLayout* sections_;
  std::vector<FormSectionView*> views_;
};

}  // namespace valdrix::desktop
