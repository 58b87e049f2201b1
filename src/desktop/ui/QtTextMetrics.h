#pragma once

#include <list>
#include <string>

#include "desktop/ui/QtTextLayout.h"
#include "view/Canvas.h"

namespace valdrix::desktop {

/// Measures text with Qt's layout, and keeps the latest layouts for whoever measures or draws the
/// same again: texts on screen are asked for several times a frame and seldom change. Main thread
/// only.
class QtTextMetrics final : public view::TextMetrics {
 public:
  [[nodiscard]] view::Size measure(std::string_view text, const view::TextStyle& style,
                                   double maxWidth) const override;

  /// Valid until the next call.
  [[nodiscard]] const QtTextLayout& layout(std::string_view text, const view::TextStyle& style,
                                           double maxWidth) const;

 private:
  struct Entry {
    Entry(std::string_view itsText, const view::TextStyle& itsStyle, double maxWidth)
        : text(itsText), style(itsStyle), layout(itsText, itsStyle, maxWidth) {}
    std::string text;
    view::TextStyle style;
    QtTextLayout layout;
  };
  mutable std::list<Entry> entries_;  ///< the latest used first
};

}  // namespace valdrix::desktop
