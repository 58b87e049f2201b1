#include "settings/SystemSettingsButton.h"

#include <utility>

namespace valdrix {

view::FormRow systemSettingsButton(std::string id, std::function<void()> open) {
  return {.content = view::PushButton{"Ouvrir les Réglages Système", std::move(open)},
          .id = std::move(id)};
}

}  // namespace valdrix
