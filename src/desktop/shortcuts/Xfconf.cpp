#include "desktop/shortcuts/Xfconf.h"

#include <optional>
#include <utility>
#include <vector>

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QString>
#include <QVariantMap>

namespace valdrix::desktop {

namespace {

constexpr auto xfconfService = "org.xfce.Xfconf";
constexpr auto xfconfPath = "/org/xfce/Xfconf";
constexpr auto notFound = "org.xfce.Xfconf.Error.PropertyNotFound";
constexpr int mostCallMilliseconds = 5000;

struct Property {
  explicit Property(const std::string& setting) {
    const auto text = QString::fromStdString(setting);
    channel = text.section(' ', 0, 0);
    property = text.section(' ', 1);
  }
  QString channel;
  QString property;
};

bool isReply(const QDBusMessage& message) { return message.type() == QDBusMessage::ReplyMessage; }

std::optional<std::string> typedText(const QVariant& value) {
  switch (value.typeId()) {
    case QMetaType::Bool:
      return value.toBool() ? "bool:true" : "bool:false";
    case QMetaType::Int:
      return "int:" + std::to_string(value.toInt());
    case QMetaType::UInt:
      return "uint:" + std::to_string(value.toUInt());
    case QMetaType::QString:
      return "string:" + value.toString().toStdString();
    default:
      return std::nullopt;
  }
}

/// The value that `text` writes down; none for a type that is not read either.
QVariant typedValue(const std::string& text) {
  const auto written = QString::fromStdString(text);
  const auto type = written.section(':', 0, 0);
  const auto rest = written.section(':', 1);
  if (type == "bool") return rest == "true";
  if (type == "int") return rest.toInt();
  if (type == "uint") return rest.toUInt();
  return type == "string" ? rest : QVariant();
}

/// The properties of the plug-ins of one kind, from all that there are.
std::vector<std::string> namesOf(const QVariantMap& properties, const Property& pattern) {
  const auto kind = pattern.property.section('<', 1).section('>', 0, 0);
  const auto folder = pattern.property.section('<', 0, 0);
  const auto property = pattern.property.section('>', 1);
  std::vector<std::string> names;
  for (auto one = properties.begin(); one != properties.end(); ++one)
    if (one.key().lastIndexOf('/') == folder.size() - 1 && one.value() == kind)
      names.push_back((pattern.channel + ' ' + one.key() + property).toStdString());
  return names;
}

}  // namespace

void Xfconf::find(const std::string& pattern, OnFound done) {
  const Property name(pattern);
  if (!name.property.contains('<')) return done({{pattern}});
  const auto folder = name.property.section("/<", 0, 0);
  call("GetAllProperties", {name.channel, folder}, [name, done](const QDBusMessage& reply) {
    if (!isReply(reply)) return done(std::nullopt);
    done(namesOf(qdbus_cast<QVariantMap>(reply.arguments().value(0)), name));
  });
}

void Xfconf::read(const std::string& setting, OnRead done) {
  const Property name(setting);
  call("GetProperty", {name.channel, name.property}, [done](const QDBusMessage& reply) {
    if (!isReply(reply))
      return done(reply.errorName() == notFound ? std::optional(Value()) : std::nullopt);
    auto read = typedText(reply.arguments().value(0).value<QDBusVariant>().variant());
    done(read ? std::optional<Value>(std::move(read)) : std::nullopt);
  });
}

void Xfconf::write(const std::string& setting, const Value& written, OnWritten done) {
  const Property name(setting);
  const auto finished = [done](const QDBusMessage& reply) { done(isReply(reply)); };
  if (written)
    call("SetProperty",
         {name.channel, name.property, QVariant::fromValue(QDBusVariant(typedValue(*written)))},
         finished);
  else
    call("ResetProperty", {name.channel, name.property, false}, finished);
}

void Xfconf::call(const char* method, const QVariantList& arguments,
                  std::function<void(const QDBusMessage& reply)> done) {
  const auto& connection = bus_.connection();
  if (!connection)
    return runLoop_.async(lifetime_.weak([done = std::move(done)] { done(QDBusMessage()); }));
  auto message = QDBusMessage::createMethodCall(xfconfService, xfconfPath, xfconfService, method);
  message.setArguments(arguments);
  auto* const watcher =
      new QDBusPendingCallWatcher(connection->asyncCall(message, mostCallMilliseconds));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                   [watcher, done = lifetime_.weak(std::move(done))] {
                     watcher->deleteLater();
                     done(watcher->reply());
                   });
}

}  // namespace valdrix::desktop
