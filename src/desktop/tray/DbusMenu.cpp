#include "desktop/tray/DbusMenu.h"

#include <algorithm>
#include <utility>

#include <QDBusArgument>

namespace valdrix::desktop {

namespace {

constexpr int rootId = 0;

const QVariantMap& rootProperties() {
  static const QVariantMap properties{{"children-display", "submenu"}};
  return properties;
}

/// Only those that are asked for; no names ask for all.
QVariantMap selected(const QVariantMap& properties, const QStringList& names) {
  if (names.isEmpty()) return properties;
  QVariantMap result;
  for (const auto& name : names)
    if (const auto found = properties.find(name); found != properties.end())
      result.insert(name, *found);
  return result;
}

QVariantMap propertiesOf(const view::MenuItem& item) {
  const auto* command = std::get_if<view::MenuCommand>(&item);
  if (!command) return {{"type", "separator"}};
  // An underscore marks the key that the menu's user may press.
  const auto label = QString::fromStdString(command->title).replace(u'_', QLatin1String("__"));
  QVariantMap properties{{"label", label}};
  if (command->shortcut)
    properties.insert(
        "shortcut",
        QVariant::fromValue(DbusMenuShortcut{
            {QStringLiteral("Control"), QString(QLatin1Char(command->shortcut->key))}}));
  return properties;
}

std::function<void()> actionOf(const view::MenuItem& item) {
  const auto* command = std::get_if<view::MenuCommand>(&item);
  return command ? command->action : nullptr;
}

template <class T>
T argument(const QDBusMessage& call, int index) {
  return qdbus_cast<T>(call.arguments().at(index));
}

}  // namespace

DbusMenu::DbusMenu(const QString& path, std::function<void()> aboutToShow)
    : BusObject(path), aboutToShow_(std::move(aboutToShow)) {
  define(describe());
}

BusObject::Interface DbusMenu::describe() {
  registerDbusMenuTypes();
  using Call = const QDBusMessage&;
  return {
      .name = "com.canonical.dbusmenu",
      .methods =
          {
              {"GetLayout", {"iias", "u(ia{sv}av)", [this](Call call) { return layout(call); }}},
              {"GetGroupProperties",
               {"aias", "a(ia{sv})", [this](Call call) { return groupProperties(call); }}},
              {"GetProperty", {"is", "v", [this](Call call) { return property(call); }}},
              {"Event",
               {"isvu", "",
                [this](Call call) {
                  return handle(argument<int>(call, 0), argument<QString>(call, 1))
                             ? call.createReply()
                             : invalidArguments(call);
                }}},
              {"EventGroup", {"a(isvu)", "ai", [this](Call call) { return handleAll(call); }}},
              {"AboutToShow",
               {"i", "b",
                [this](Call call) {
                  const int id = argument<int>(call, 0);
                  if (id == rootId) return call.createReply(prepareToShow());
                  return find(id) ? call.createReply(false) : invalidArguments(call);
                }}},
              {"AboutToShowGroup", {"ai", "aiai", [this](Call call) { return showAll(call); }}},
          },
      .properties = {{"Version", 3U},
                     {"TextDirection", "ltr"},
                     {"Status", "normal"},
                     {"IconThemePath", QStringList()}},
      .signalsOut = {{"LayoutUpdated", "ui"},
                     {"ItemsPropertiesUpdated", "a(ia{sv})a(ias)"},
                     {"ItemActivationRequested", "iu"}},
  };
}

void DbusMenu::setMenu(const view::Menu& menu) {
  auto former = std::exchange(items_, {});
  const auto look = [](const Item& item) { return item.properties; };
  bool isSame = former.size() == menu.items.size();
  for (const auto& entry : menu.items) {
    const auto properties = propertiesOf(entry);
    const auto known = std::ranges::find(former, properties, look);
    isSame &= known != former.end() && known - former.begin() == std::ssize(items_);
    items_.push_back({known == former.end() ? nextId_++ : std::exchange(known->id, rootId),
                      properties, actionOf(entry)});
    // Of two that look alike the next is the other one.
    if (known != former.end()) known->properties.clear();
  }
  if (isSame) return;
  ++revision_;
  sendSignal("LayoutUpdated", {revision_, rootId});
}

const DbusMenu::Item* DbusMenu::find(int id) const {
  const auto found = std::ranges::find(items_, id, &Item::id);
  return found == items_.end() ? nullptr : &*found;
}

QDBusMessage DbusMenu::layout(const QDBusMessage& call) const {
  const int id = argument<int>(call, 0);
  const int depth = argument<int>(call, 1);
  const auto names = argument<QStringList>(call, 2);
  DbusMenuLayout layout{.id = id, .properties = {}, .children = {}};
  if (const Item* item = find(id)) {
    layout.properties = selected(item->properties, names);
  } else if (id == rootId) {
    layout.properties = selected(rootProperties(), names);
    // Every number but 0 reaches the items: there is one level.
    if (depth != 0)
      for (const Item& child : items_)
        layout.children.append(QDBusVariant(
            QVariant::fromValue(DbusMenuLayout{child.id, selected(child.properties, names), {}})));
  } else {
    return invalidArguments(call);
  }
  return call.createReply({revision_, QVariant::fromValue(layout)});
}

QDBusMessage DbusMenu::groupProperties(const QDBusMessage& call) const {
  const auto ids = argument<QList<int>>(call, 0);
  const auto names = argument<QStringList>(call, 1);
  QList<DbusMenuProperties> group;
  const auto isWanted = [&](int id) { return ids.isEmpty() || ids.contains(id); };
  if (isWanted(rootId)) group.append({rootId, selected(rootProperties(), names)});
  for (const Item& item : items_)
    if (isWanted(item.id)) group.append({item.id, selected(item.properties, names)});
  return call.createReply(QVariant::fromValue(group));
}

QDBusMessage DbusMenu::property(const QDBusMessage& call) const {
  const int id = argument<int>(call, 0);
  const Item* item = find(id);
  const QVariantMap properties =
      item ? item->properties : (id == rootId ? rootProperties() : QVariantMap());
  const auto found = properties.find(argument<QString>(call, 1));
  if (found == properties.end()) return invalidArguments(call);
  return call.createReply(QVariant::fromValue(QDBusVariant(*found)));
}

bool DbusMenu::handle(int id, const QString& kind) {
  const Item* item = find(id);
  if (!item) return id == rootId;
  // Not before the answer has gone out: it may end the program.
  if (kind == u"clicked" && item->action)
    QMetaObject::invokeMethod(&context_, item->action, Qt::QueuedConnection);
  return true;
}

QDBusMessage DbusMenu::handleAll(const QDBusMessage& call) {
  QList<int> unknown;
  const auto events = argument<QList<DbusMenuEvent>>(call, 0);
  for (const auto& event : events)
    if (!handle(event.id, event.kind)) unknown.append(event.id);
  if (!events.isEmpty() && unknown.size() == events.size()) return invalidArguments(call);
  return call.createReply(QVariant::fromValue(unknown));
}

bool DbusMenu::prepareToShow() {
  const auto before = revision_;
  if (aboutToShow_) aboutToShow_();
  return revision_ != before;
}

QDBusMessage DbusMenu::showAll(const QDBusMessage& call) {
  QList<int> changed;
  QList<int> unknown;
  const auto ids = argument<QList<int>>(call, 0);
  for (const int id : ids)
    if (id != rootId && !find(id)) unknown.append(id);
  if (ids.contains(rootId) && prepareToShow()) changed.append(rootId);
  return call.createReply({QVariant::fromValue(changed), QVariant::fromValue(unknown)});
}

}  // namespace valdrix::desktop
