#include "desktop/shortcuts/KGlobalAccelSettings.h"

#include <algorithm>
#include <utility>

#include "desktop/shortcuts/KGlobalAccelAction.h"
#include "desktop/shortcuts/KGlobalAccelCall.h"

namespace valdrix::desktop {

void KGlobalAccelSettings::read(const std::string& setting, OnRead done) {
  find(setting, [this, done = std::move(done)](const QStringList& id) {
    if (id.isEmpty()) return done(std::nullopt);
    ask("shortcutKeys", id, [done](const std::optional<KGlobalAccelTriggers>& triggers) {
      done(triggers ? std::optional<Value>(triggers->text()) : std::nullopt);
    });
  });
}

void KGlobalAccelSettings::write(const std::string& setting, const Value& value, OnWritten done) {
  find(setting, [this, value, done = std::move(done)](const QStringList& id) {
    if (id.isEmpty()) return done(false);
    const auto write = [this, id, done](const std::optional<KGlobalAccelTriggers>& triggers) {
      triggers ? set(id, *triggers, done) : done(false);
    };
    value ? write(KGlobalAccelTriggers::parse(*value)) : ask("defaultShortcutKeys", id, write);
  });
}

/// To an unknown action the service answers as to one without keys, so it is looked for first.
void KGlobalAccelSettings::find(const std::string& setting,
                                std::function<void(const QStringList& id)> done) {
  const auto name = QString::fromStdString(setting);
  const auto component = name.section(u'/', 0, 0);
  const auto action = name.section(u'/', 1);
  KGlobalAccelCall{"allActionsForComponent", {QStringList{component, {}, {}, {}}}}.send(
      bus_, receiver_, [component, action, done = std::move(done)](const QDBusMessage& reply) {
        if (reply.signature() != u"aas") return done({});
        const auto ids = qdbus_cast<QList<QStringList>>(reply.arguments().at(0));
        const auto id = std::ranges::find_if(ids, [&](const QStringList& one) {
          return one.value(0) == component && one.value(1) == action;
        });
        done(id == ids.end() ? QStringList() : *id);
      });
}

void KGlobalAccelSettings::ask(const char* method, const QStringList& id, OnTriggers done) {
  KGlobalAccelCall{method, {id}}.send(bus_, receiver_, [done = std::move(done)](const auto& reply) {
    done(KGlobalAccelTriggers::from(reply));
  });
}

void KGlobalAccelSettings::set(const QStringList& id, const KGlobalAccelTriggers& triggers,
                               OnWritten done) {
  for (const auto& action : kGlobalAccelActions)
    if (triggers.contains(action.qtKey)) KGlobalAccelCall{"unregister", action.place()}.send(bus_);
  KGlobalAccelCall{"setForeignShortcutKeys", {id, triggers.argument()}}.send(bus_);
  // It answers nothing. The calls arrive in their order.
  ask("shortcutKeys", id, [triggers, done = std::move(done)](const auto& now) {
    done(now && now->isSameAs(triggers));
  });
}

}  // namespace valdrix::desktop
