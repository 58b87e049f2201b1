#pragma once

#include <QObject>
#include <QStringList>

#include "desktop/session/SessionBus.h"
#include "desktop/shortcuts/KGlobalAccelTriggers.h"
#include "desktop/shortcuts/SettingStore.h"

namespace valdrix::desktop {

/// The keys of other programs' global shortcuts under KDE. A setting is "component/action" by their
/// unique names ("kmix/increase_volume"), and its value is what triggers the action, as
/// `KGlobalAccelTriggers` writes it. There is always a value: writing none
/// writes the action's default. It counts at once, and the service keeps it in kglobalshortcutsrc.
class KGlobalAccelSettings final : public SettingStore {
 public:
  /// `bus` outlives this.
  explicit KGlobalAccelSettings(SessionBus& bus) : bus_(bus) {}

  [[nodiscard]] std::string name() const override { return "kglobalaccel"; }
  void read(const std::string& setting, OnRead done) override;
  /// A key that this program has itself is given up for it: the service would refuse it.
  void write(const std::string& setting, const Value& value, OnWritten done) override;

 private:
  /// None when the service does not know it or does not answer.
  using OnTriggers = std::function<void(const std::optional<KGlobalAccelTriggers>&)>;

  void find(const std::string& setting, std::function<void(const QStringList& id)> done);
  void ask(const char* method, const QStringList& id, OnTriggers done);
  void set(const QStringList& id, const KGlobalAccelTriggers& triggers, OnWritten done);

  SessionBus& bus_;
  /// Its end is the end of all calls that wait.
  QObject receiver_;
};

}  // namespace valdrix::desktop
