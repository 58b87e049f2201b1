#pragma once

#include <functional>
#include <memory>

#include <QWidget>

#include "view/Form.h"

namespace valdrix::desktop {

/// What the parts of a form have from their form.
struct FormContext {
  /// Called after each action of the user.
  std::function<void()> didEdit;
  /// Whether texts can be selected, and not only those that are meant to be copied.
  bool hasSelectableTexts = false;
};

/// One row of a form as widgets, of one kind for its life.
class FormRowView : public QWidget {
 public:
  /// A row of that content's kind, which has yet to be shown.
  [[nodiscard]] static std::unique_ptr<FormRowView> make(const view::FormRow& row,
                                                         const FormContext& context);

  /// Shows a row of its kind, touching only what is different.
  virtual void show(const view::FormRow& row) = 0;
  /// What takes the keyboard's input; null for a row that is only read.
  [[nodiscard]] virtual QWidget* control() const { return nullptr; }

 protected:
  FormRowView();
};

}  // namespace valdrix::desktop
