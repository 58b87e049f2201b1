#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "view/Color.h"

namespace valdrix::view {

/// How strongly a text of a form stands out.
enum class Prominence {
  primary,
  secondary,  ///< dimmed
};

/// A label that is more than a title: a filled circle 10 points across before it, and after it a
/// smaller, dimmed text. 8 points apart, centred on each other.
struct ToggleLabel {
  std::string title;
  std::optional<Color> dot{};
  std::optional<std::string> detail{};
  bool operator==(const ToggleLabel&) const = default;
};

/// A switch. `set` is called with the wanted state when the user flips it; the control goes on
/// showing `isOn` of the description after it.
struct Toggle {
  ToggleLabel label;
  bool isOn = false;
  std::function<void(bool isOn)> set;
};

/// A text in digits of equal width, dimmed, at the trailing edge of its row.
struct ValueText {
  std::string text;
  bool operator==(const ValueText&) const = default;
};

/// A symbol in a colour of its own and a label, 4 points apart, at the trailing edge of its row.
struct Badge {
  /// Nothing for a label alone.
  std::optional<std::string> symbol;
  Color symbolColor{};
  std::string label;
  Prominence prominence = Prominence::primary;
  bool operator==(const Badge&) const = default;
};

/// A title at the leading edge and something to read at the trailing one.
struct LabeledRow {
  std::string title;
  std::variant<ValueText, Badge> content;
};

/// A labelled row with arrows that move `value` by `step` within its range and call `set` with the
/// result, each press once. A value outside the range moves into it with the first press.
struct Stepper {
  std::string title;
  std::string valueText;
  std::int64_t value = 0;
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  std::int64_t step = 1;
  std::function<void(std::int64_t value)> set;
};

/// A knob on a line from `minimum` to `maximum`, in steps; `set` is called while it moves. The
/// title is not seen but read to those who cannot see. The end labels are small and dimmed.
struct Slider {
  std::string title;
  double value = 0;
  double minimum = 0;
  double maximum = 1;
  double step = 0.1;
  std::string minimumLabel;
  std::string maximumLabel;
  std::function<void(double value)> set;
};

struct PushButton {
  std::string title;
  std::function<void()> action;
};

/// A text across the row, in as many lines as it takes.
struct FormText {
  std::string text;
  Prominence prominence = Prominence::primary;
  /// A command or another text to be copied: in letters of equal width, and always selectable.
  bool isCode = false;
};

/// One line of a form. `id` tells it from the other rows of its section when their order or number
/// changes; rows without one are told apart by their place.
struct FormRow {
  std::variant<Toggle, LabeledRow, Stepper, Slider, PushButton, FormText> content;
  std::string id{};
};

/// Rows that belong together, in one rounded group: the header above it, the footer, dimmed and
/// wrapped, below, and below that a link to where there is more. Empty texts take no room.
struct FormSection {
  std::string header;
  std::vector<FormRow> rows;
  std::string footer{};
  std::optional<PushButton> link{};
};

/// Sections below each other. What is taller than its window scrolls.
struct Form {
  std::vector<FormSection> sections;
};

}  // namespace valdrix::view
