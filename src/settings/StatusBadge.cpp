#include "settings/StatusBadge.h"

namespace valdrix {

namespace {

// Each has a contrast of at least 3 to 1 on a white window and on a dark grey one.
constexpr view::Color green{0x2E / 255.0, 0x9E / 255.0, 0x4F / 255.0};
constexpr view::Color red{0xE5 / 255.0, 0x48 / 255.0, 0x4D / 255.0};
constexpr view::Color orange{0xD9 / 255.0, 0x73 / 255.0, 0x0D / 255.0};

constexpr const char* cross = "xmark.circle.fill";

}  // namespace

StatusBadge StatusBadge::granted() { return {State::granted, "Autorisé"}; }

view::Badge StatusBadge::body() const {
  switch (state) {
    case State::granted:
      return {.symbol = "checkmark.circle.fill", .symbolColor = green, .label = label};
    case State::denied:
      return {.symbol = cross, .symbolColor = red, .label = label};
    case State::warning:
      return {.symbol = cross, .symbolColor = orange, .label = label};
    case State::notDetermined:
      break;
  }
  return {.symbol = std::nullopt, .label = label, .prominence = view::Prominence::secondary};
}

}  // namespace valdrix
