#include "tests/shortcuts/FakeKGlobalAccel.h"

#include <algorithm>

#include <QDBusArgument>
#include <QDBusMetaType>

namespace valdrix::tests {

namespace {

const QString serviceName = QStringLiteral("org.kde.kglobalaccel");

struct Wire {
  QList<int> keys;
  friend QDBusArgument& operator<<(QDBusArgument& out, const Wire& wire) {
    out.beginStructure();
    out << wire.keys;
    out.endStructure();
    return out;
  }
  friend const QDBusArgument& operator>>(const QDBusArgument& in, Wire& wire) {
    in.beginStructure();
    in >> wire.keys;
    in.endStructure();
    return in;
  }
};

QVariant toBus(const FakeKGlobalAccel::Sequences& sequences) {
  QList<Wire> list;
  for (const auto& keys : sequences) list.append({keys});
  return QVariant::fromValue(list);
}

FakeKGlobalAccel::Sequences fromBus(const QVariant& argument) {
  FakeKGlobalAccel::Sequences sequences;
  for (const auto& wire : qdbus_cast<QList<Wire>>(argument)) sequences.append(wire.keys);
  return sequences;
}

}  // namespace

FakeKGlobalAccel::FakeKGlobalAccel()
    : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, serviceName)) {
  qDBusRegisterMetaType<Wire>();
  qDBusRegisterMetaType<QList<Wire>>();
  qDBusRegisterMetaType<QList<QStringList>>();
  connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
}

FakeKGlobalAccel::~FakeKGlobalAccel() { QDBusConnection::disconnectFromBus(serviceName); }

void FakeKGlobalAccel::setRunning(bool isRunning) {
  for (auto& [id, action] : actions_) action.isPresent = false;
  isRunning ? connection_.registerService(serviceName) : connection_.unregisterService(serviceName);
}

void FakeKGlobalAccel::add(const QString& component, const QString& action, const Sequences& keys) {
  actions_[{component, action}] = {keys, keys, true};
}

FakeKGlobalAccel::Sequences FakeKGlobalAccel::keysOf(const QString& component,
                                                     const QString& action) const {
  const auto found = actions_.find({component, action});
  return found == actions_.end() ? Sequences() : found->second.keys;
}

QStringList FakeKGlobalAccel::actionsOf(const QString& component) const {
  QStringList names;
  for (const auto& [id, action] : actions_)
    if (id.first == component) names.append(id.second);
  return names;
}

bool FakeKGlobalAccel::signal(const char* name, int key) {
  const auto found = std::ranges::find_if(actions_, [key](const auto& entry) {
    return entry.second.isPresent && entry.second.keys.contains({key, 0, 0, 0});
  });
  if (found == actions_.end()) return false;
  auto message = QDBusMessage::createSignal("/component/" + found->first.first,
                                            "org.kde.kglobalaccel.Component", QLatin1String(name));
  message.setArguments({found->first.first, found->first.second, qlonglong{0}});
  return connection_.send(message);
}

void FakeKGlobalAccel::set(const Id& id, Sequences keys) {
  for (auto& sequence : keys)
    for (const auto& [other, action] : actions_)
      if (other != id && action.keys.contains(sequence)) sequence = {0, 0, 0, 0};
  actions_.at(id).keys = keys;
}

bool FakeKGlobalAccel::handleMessage(const QDBusMessage& message,
                                     const QDBusConnection& connection) {
  const auto values = answer(message);
  return !message.isReplyRequired() || connection.send(message.createReply(values));
}

QVariantList FakeKGlobalAccel::answer(const QDBusMessage& call) {
  const auto method = call.member();
  const auto arguments = call.arguments();
  if (method == "unregister")
    return {actions_.erase({arguments.at(0).toString(), arguments.at(1).toString()}) > 0};
  const auto name = arguments.at(0).toStringList();
  // A shorter name is not understood.
  const Id id = name.size() < 4 ? Id() : Id(name.at(0), name.at(1));
  if (method == "allActionsForComponent") {
    QList<QStringList> ids;
    for (const auto& action : actionsOf(id.first)) ids.append({id.first, action, "Nom", "Action"});
    return {QVariant::fromValue(ids)};
  }
  if (method == "doRegister") actions_.try_emplace(id);
  const auto found = actions_.find(id);
  if (found == actions_.end()) return {toBus({})};
  if (method == "setShortcutKeys") {
    set(id, fromBus(arguments.at(1)));
    found->second.isPresent = arguments.at(2).toUInt() & 2U;
  }
  if (method == "setForeignShortcutKeys") {
    set(id, fromBus(arguments.at(1)));
    auto news =
        QDBusMessage::createSignal("/kglobalaccel", "org.kde.KGlobalAccel", "yourShortcutsChanged");
    news.setArguments({name, toBus(found->second.keys)});
    connection_.send(news);
  }
  return {toBus(method == "defaultShortcutKeys" ? found->second.defaultKeys : found->second.keys)};
}

}  // namespace valdrix::tests
