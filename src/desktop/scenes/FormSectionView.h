#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <QWidget>

#include "desktop/scenes/FormRowView.h"
#include "desktop/scenes/LinkButton.h"
#include "desktop/scenes/TextLabel.h"
#include "view/Form.h"

class QVBoxLayout;

namespace valdrix::desktop {

/// The rounded group that a section's rows stand in, with hairlines between them.
class RowGroup final : public QWidget {
 public:
  explicit RowGroup(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A section of a form: its header, its group of rows, its footer, its link.
class FormSectionView final : public QWidget {
 public:
  explicit FormSectionView(FormContext context, QWidget* parent = nullptr);

  /// Shows a section, keeping the rows that are still there. True when rows came, went or changed
  /// their places.
  bool show(const view::FormSection& section);

  /// What takes the keyboard's input, from top to bottom.
  [[nodiscard]] std::vector<QWidget*> controls() const;

 private:
  struct Row {
    std::string key;
    std::size_t kind;
    FormRowView* view;
    bool operator==(const Row&) const = default;
  };

  [[nodiscard]] Row takeOrMake(std::vector<Row>& old, const view::FormRow& row, std::string key);
  void arrange();

  FormContext context_;
  TextLabel header_;
  RowGroup group_;
  TextLabel footer_;
  LinkButton link_;
  QVBoxLayout* lines_;
  std::vector<Row> rows_;
};

}  // namespace valdrix::desktop
