#pragma once

#include "platform/Bundle.h"

namespace valdrix::desktop {

/// The version that the program was built as.
class CompiledBundle final : public platform::Bundle {
 public:
  [[nodiscard]] std::optional<std::string> infoText(std::string_view key) const override;
};

}  // namespace valdrix::desktop
