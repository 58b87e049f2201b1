#pragma once

#include <string>

#include <QLabel>

#include "view/Form.h"

namespace valdrix::desktop {

/// A text in the application's font or in one made from it, which it follows when the font or the
/// palette changes. Always plain text, and wrapped where asked for.
class TextLabel : public QLabel {
 public:
  struct Look {
    double fontFactor = 1;
    QFont::Weight weight = QFont::Normal;
    view::Prominence prominence = view::Prominence::primary;
    /// All digits as wide as the widest, for values that change in place. Never wrapped.
    bool hasTabularDigits = false;
    bool isWrapped = false;
    /// Letters of equal width.
    bool isCode = false;
  };

  explicit TextLabel(const Look& look, QWidget* parent = nullptr);

  void setUtf8(const std::string& text);
  void setProminence(view::Prominence prominence);
  /// Lets the user select and copy the text, by the pointer and by the keyboard, and take it all
  /// with the tab key. Digits are as wide as they are then.
  void makeSelectable();
  [[nodiscard]] bool isSelectable() const;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] QColor color() const;

 private:
  void followFont();
  void followColor();

  Look look_;
};

}  // namespace valdrix::desktop
