#include "calendar/PermissionPrompt.h"

#include "calendar/MessageView.h"

namespace valdrix {

view::View PermissionPrompt::body() const {
  return MessageView{.symbolName = "lock.fill",
                     .symbolOpacity = 0.55,
                     .message = message,
                     .messageOpacity = 0.85,
                     .detail = "Ouvre les Préférences (⌘,) pour le débloquer.",
                     .detailOpacity = 0.5};
}

}  // namespace valdrix
