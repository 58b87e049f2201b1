#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <QWidget>

#include "desktop/scenes/TextLabel.h"
#include "view/Form.h"

class QVBoxLayout;

namespace valdrix::desktop {

class FormRowView;

/// The rounded group that a section's rows stand in, with hairlines between them.
class RowGroup final : public QWidget {
 public:
  explicit RowGroup(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// A section of a form: its header, its group of rows, its footer.
class FormSectionView final : public QWidget {
 public:
  explicit FormSectionView(std::function<void()> didEdit, QWidget* parent = nullptr);

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

  std::function<void()> didEdit_;
  TextLabel header_;
  RowGroup group_;
  TextLabel footer_;
  QVBoxLayout* lines_;
  std::vector<Row> rows_;
};

}  // namespace valdrix::desktop
