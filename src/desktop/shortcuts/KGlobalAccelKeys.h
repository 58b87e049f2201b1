#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include "desktop/keys/KeySource.h"
#include "desktop/session/SessionBus.h"
#include "desktop/shortcuts/KGlobalAccelAction.h"
#include "desktop/shortcuts/KGlobalAccelNews.h"

namespace valdrix::desktop {

/// Media keys as global shortcuts of KDE: the way in which its Wayland compositor gives them out.
/// The service keeps a key for the action that has it, running or not, so keys come only when the
/// desktop's own actions have been made to leave them. Shortcuts that are held outlive a process
/// that is killed and are this program's again when it runs; what it does not hold then is removed.
///
/// On X11 the service grabs the keys. A grab that another client has keeps it from doing so until
/// the action gets its keys anew, and it does not say so: no source that grabs keys may be asked
/// for one before this.
class KGlobalAccelKeys final : public KeySource {
 public:
  /// Whether the desktop leaves that key to this program.
  using IsEntrusted = std::function<bool(platform::MediaKey)>;

  /// `bus` outlives this. When `isEntrusted` answers otherwise, whoever made this asks `offers`
  /// again.
  KGlobalAccelKeys(SessionBus& bus, IsEntrusted isEntrusted, Events events);
  ~KGlobalAccelKeys() override;
  KGlobalAccelKeys(const KGlobalAccelKeys&) = delete;
  KGlobalAccelKeys& operator=(const KGlobalAccelKeys&) = delete;

  [[nodiscard]] std::string name() const override { return "kglobalaccel"; }
  /// Not before the service has been seen to run.
  [[nodiscard]] bool offers(platform::MediaKey key) const override;
  void hold(const std::set<platform::MediaKey>& keys) override;
  /// Held once the service has said so. With Shift the key may be another program's all the same.
  [[nodiscard]] KeyState state(platform::MediaKey key) const override;

 private:
  using Action = KGlobalAccelAction;

  /// Registers what is held and not asked for yet, and takes back what is held no more.
  void settle();
  void ask(const Action& action);
  void giveUp(const Action& action);
  void setOurs(const Action& action, bool isOurs);
  /// Takes back what an earlier process left.
  void sweep();
  void meetOwner();
  void take(const QDBusMessage& message);
  void takeChange(const QDBusMessage& message);
  void press(const Action& action, bool isRepeat);
  void release(const Action& action);

  SessionBus& bus_;
  IsEntrusted isEntrusted_;
  Events events_;
  std::set<platform::MediaKey> wanted_;
  /// What has been asked for, and whether it is known to be ours.
  std::map<const Action*, bool> asked_;
  /// What is down, and until when a press more of it can be a repeat.
  std::map<const Action*, QDeadlineTimer> down_;
  /// Its end is the end of all calls that wait.
  QObject receiver_;
  KGlobalAccelNews news_;
};

}  // namespace valdrix::desktop
