#pragma once

#include <QCollator>

#include "platform/Collator.h"

namespace valdrix::desktop {

/// The order of texts by Qt's collation for the user's language.
class QtCollator final : public platform::Collator {
 public:
  QtCollator();

  [[nodiscard]] int compareIgnoringCase(std::string_view a, std::string_view b) const override;

 private:
  QCollator collator_;
};

}  // namespace valdrix::desktop
