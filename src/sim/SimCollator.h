#pragma once

#include "platform/Collator.h"

namespace valdrix::sim {

/// A simple order for French: letters without regard to case and, unless that is the only
/// difference, to accents; everything else by code point.
class SimCollator final : public platform::Collator {
 public:
  [[nodiscard]] int compareIgnoringCase(std::string_view a, std::string_view b) const override;
};

}  // namespace valdrix::sim
