#include "settings/MenuBarContent.h"

namespace valdrix {

view::Menu MenuBarContent::body() const {
  updateCheckService.checkIfNeeded();
  view::Menu menu;
  if (updateCheckService.hasUpdate())
    menu.items = {view::MenuCommand{.title = "Une nouvelle version est disponible",
                                    .action =
                                        [&workspace = workspace, &service = updateCheckService] {
                                          workspace.open(service.websiteURL());
                                        }},
                  view::MenuSeparator()};
  menu.items.insert(
      menu.items.end(),
      {view::MenuCommand{.title = "Préférences…",
                         .action =
                             [&application = application, openSettings = openSettings] {
                               application.activate();
                               openSettings();
                             },
                         .shortcut = view::KeyboardShortcut{','}},
       view::MenuSeparator(),
       view::MenuCommand{.title = "Quitter valdrix",
                         .action = [&application = application] { application.terminate(); },
                         .shortcut = view::KeyboardShortcut{'q'}}});
  return menu;
}

}  // namespace valdrix
