#include "commands/CalendarAccess.h"

namespace valdrix::commands {

std::string requestCalendarAccess(CalendarService& service,
                                  const platform::EventStore& eventStore) {
  // The service knows the status as of its start, and the record may have been changed since.
  const auto status = eventStore.authorizationStatus();
  service.requestAccess();
  switch (status) {
    case platform::EventAuthorization::fullAccess:
      return "L'accès aux calendriers est déjà autorisé.";
    case platform::EventAuthorization::denied:
      return "L'accès aux calendriers a été refusé. Les Préférences mènent à la page où "
             "l'accorder.";
    case platform::EventAuthorization::restricted:
    case platform::EventAuthorization::writeOnly:
      return "L'accès est autorisé, mais le système ne laisse pas lire tes calendriers.";
    case platform::EventAuthorization::notDetermined:
      break;
  }
  return "valdrix te demande l'accès à tes calendriers dans une fenêtre.";
}

}  // namespace valdrix::commands
