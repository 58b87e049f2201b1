#pragma once

#include <functional>
#include <memory>

#include <QWidget>

#include "view/Form.h"

namespace valdrix::desktop {

/// One row of a form as widgets, of one kind for its life.
class FormRowView : public QWidget {
 public:
  /// A row of that content's kind, which has yet to be shown. `didEdit` is called after each action
  /// of the user.
  [[nodiscard]] static std::unique_ptr<FormRowView> make(const view::FormRow& row,
                                                         std::function<void()> didEdit);

  /// Shows a row of its kind, touching only what is different.
  virtual void show(const view::FormRow& row) = 0;
  /// What takes the keyboard's input; null for a row that is only read.
  [[nodiscard]] virtual QWidget* control() const { return nullptr; }

 protected:
  FormRowView();
};

}  // namespace valdrix::desktop
