#include "tests/calendar/CalendarServer.h"

#include <signal.h>

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QStandardPaths>

namespace {

/// One occurrence of an event, or all of them, as the server wants to be told what to remove.
struct Occurrence {
  QString uid;
  QString recurrence;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Occurrence& occurrence) {
  argument.beginStructure();
  argument << occurrence.uid << occurrence.recurrence;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Occurrence&) { return argument; }

}  // namespace

Q_DECLARE_METATYPE(Occurrence)

namespace valdrix::tests {

namespace {

const QString family = "org.gnome.evolution.dataserver.";
const QString root = "/org/gnome/evolution/dataserver/";
constexpr unsigned noFlags = 0;

QString component(const QString& event) {
  return "BEGIN:VEVENT\r\n" + event + "\r\nEND:VEVENT\r\n";
}

}  // namespace

CalendarServer::CalendarServer() {
  set("HOME", folder_.path());
  for (const auto* kind : {"CONFIG_HOME", "DATA_HOME", "CACHE_HOME", "RUNTIME_DIR"}) {
    QDir(folder_.path()).mkdir(kind);
    set(QByteArray("XDG_") + kind, folder_.filePath(kind));
  }
  set("GSETTINGS_BACKEND", "memory");

  // Of all that the system's bus can start, the server alone.
  QDir(folder_.path()).mkdir("services");
  const auto system = QStandardPaths::locate(QStandardPaths::GenericDataLocation, "dbus-1/services",
                                             QStandardPaths::LocateDirectory);
  for (const auto& file : QDir(system).entryList({family + "[SC]*.service"})) {
    QFile::copy(system + "/" + file, folder_.filePath("services/" + file));
    services_.append(file.chopped(8));
  }
  bus_ = std::make_unique<PrivateBus>(folder_.filePath("services"));
}

CalendarServer::~CalendarServer() {
  if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  bus_.reset();
  for (const auto& [name, value] : variablesBefore_)
    value.isNull() ? qunsetenv(name) : qputenv(name, value);
}

void CalendarServer::set(const QByteArray& name, const QString& value) {
  variablesBefore_.emplace_back(name, qgetenv(name));
  qputenv(name, value.toUtf8());
}

bool CalendarServer::startBus() {
  static int number = 0;
  if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  if (service("Sources").isEmpty() || !bus_->start()) return false;
  connection_ = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                              QString("calendar-server-%1").arg(++number));
  return connection_->isConnected();
}

QString CalendarServer::service(const QString& kind) const {
  return services_.filter(family + kind).value(0);
}

CalendarServer::Reply CalendarServer::call(const QString& kind, const QString& path,
                                           const QString& interface, const QString& method,
                                           const QVariantList& arguments) const {
  auto message = QDBusMessage::createMethodCall(service(kind), path, interface, method);
  message.setArguments(arguments);
  const auto reply = connection_->call(message);
  if (reply.type() == QDBusMessage::ReplyMessage) return reply.arguments();
  qWarning() << method << reply.errorMessage();
  return std::nullopt;
}

bool CalendarServer::addEntry(const QString& uid, const QString& keyFile) {
  qDBusRegisterMetaType<QMap<QString, QString>>();
  const QMap<QString, QString> entries{{uid, keyFile}};
  return call("Sources", root + "SourceManager", family + "SourceManager", "CreateSources",
              {QVariant::fromValue(entries)})
      .has_value();
}

bool CalendarServer::callEntry(const QString& uid, const QString& interface, const QString& method,
                               const QVariantList& arguments) {
  using Interfaces = QMap<QString, QVariantMap>;
  const auto reply = call("Sources", root + "SourceManager", "org.freedesktop.DBus.ObjectManager",
                          "GetManagedObjects");
  if (!reply) return false;
  const auto objects = qdbus_cast<QMap<QDBusObjectPath, Interfaces>>(reply->at(0));
  for (auto entry = objects.begin(); entry != objects.end(); ++entry)
    if (entry->value(family + "Source").value("UID").toString() == uid)
      return call("Sources", entry.key().path(), interface, method, arguments).has_value();
  return false;
}

bool CalendarServer::changeEntry(const QString& uid, const QString& keyFile) {
  return callEntry(uid, family + "Source.Writable", "Write", {keyFile});
}

bool CalendarServer::removeEntry(const QString& uid) {
  return callEntry(uid, family + "Source.Removable", "Remove", {});
}

QString CalendarServer::calendar(const QString& name, const QString& more, const QString& parent) {
  return QString("[Data Source]\nDisplayName=%1\nParent=%3\n[Calendar]\nBackendName=local\n%2\n")
      .arg(name, more, parent);
}

bool CalendarServer::callCalendar(const QString& calendar, const QString& method,
                                  const QVariantList& arguments) {
  const auto place = call("Calendar", root + "CalendarFactory", family + "CalendarFactory",
                          "OpenCalendar", {calendar});
  if (!place) return false;
  const auto path = place->at(0).toString();
  return call("Calendar", path, family + "Calendar", "Open") &&
         call("Calendar", path, family + "Calendar", method, arguments);
}

bool CalendarServer::add(const QString& calendar, const QStringList& events) {
  QStringList components;
  for (const auto& event : events) components.append(component(event));
  return callCalendar(calendar, "CreateObjects", {components, noFlags});
}

bool CalendarServer::change(const QString& calendar, const QString& event) {
  const QString what = event.contains("RECURRENCE-ID") ? "this" : "all";
  return callCalendar(calendar, "ModifyObjects", {QStringList{component(event)}, what, noFlags});
}

bool CalendarServer::remove(const QString& calendar, const QString& uid,
                            const QString& occurrence) {
  qDBusRegisterMetaType<Occurrence>();
  qDBusRegisterMetaType<QList<Occurrence>>();
  const QList<Occurrence> occurrences{{uid, occurrence}};
  const QString what = occurrence.isEmpty() ? "all" : "this";
  return callCalendar(calendar, "RemoveObjects", {QVariant::fromValue(occurrences), what, noFlags});
}

bool CalendarServer::addZone(const QString& calendar, const QString& zone) {
  return callCalendar(calendar, "AddTimezone", {zone});
}

bool CalendarServer::isRunning(const QString& kind) const {
  return connection_->interface()->isServiceRegistered(service(kind));
}

bool CalendarServer::kill(const QString& kind) {
  const QDBusReply<unsigned> pid = connection_->interface()->servicePid(service(kind));
  return pid.isValid() && ::kill(static_cast<pid_t>(pid.value()), SIGKILL) == 0;
}

}  // namespace valdrix::tests
