#pragma once

#include <functional>
#include <string>

#include <QDBusMessage>
#include <QVariantList>

#include "desktop/session/SessionBus.h"
#include "desktop/shortcuts/SettingStore.h"
#include "observation/Lifetime.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Xfce's settings, by the service org.xfce.Xfconf. A setting's name is its channel and property,
/// "xfce4-panel /plugins/plugin-8/show-notifications"; the pattern "xfce4-panel /plugins/<kind>/x"
/// stands for the property x of all plug-ins of that kind. Values are written with their type:
/// bool:true, int:3, uint:3, string:text; others cannot be read.
class Xfconf final : public SettingStore {
 public:
  /// Both outlive this.
  Xfconf(SessionBus& bus, platform::RunLoop& runLoop) : bus_(bus), runLoop_(runLoop) {}

  [[nodiscard]] std::string name() const override { return "xfconf"; }
  void find(const std::string& pattern, OnFound done) override;
  void read(const std::string& setting, OnRead done) override;
  void write(const std::string& setting, const Value& value, OnWritten done) override;

 private:
  void call(const char* method, const QVariantList& arguments,
            std::function<void(const QDBusMessage& reply)> done);

  SessionBus& bus_;
  platform::RunLoop& runLoop_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
