#include "desktop/calendarserver/CalendarServerRegistry.h"

#include <algorithm>
#include <utility>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

#include "desktop/calendarserver/CalendarServerCall.h"
#include "desktop/calendarserver/CalendarServerEntry.h"

namespace valdrix::desktop {

namespace {

const QString family = QStringLiteral("org.gnome.evolution.dataserver");
const QString managerPath = QStringLiteral("/org/gnome/evolution/dataserver/SourceManager");
const QString sourceInterface = QStringLiteral("org.gnome.evolution.dataserver.Source");
const QString objectManager = QStringLiteral("org.freedesktop.DBus.ObjectManager");

/// The server keeps its list of calendars here from its first start on.
bool hasRunBefore() {
  const auto settings = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return QFileInfo(settings + "/evolution/sources").isDir();
}

/// The version of the protocol that the service `name` of this kind speaks; its name ends in it.
std::optional<int> version(const QString& name, const char* kind) {
  const QString prefix = family + u'.' + QLatin1String(kind);
  bool isNumber = false;
  const int number = name.startsWith(prefix) ? name.sliced(prefix.size()).toInt(&isNumber) : 0;
  return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<QString> newest(const QStringList& names, const char* kind) {
  std::optional<QString> best;
  for (const auto& name : names) {
    const auto number = version(name, kind);
    if (number && (!best || *number > *version(*best, kind))) best = name;
  }
  return best;
}

/// The languages in which this system's user wants names, the best first.
QStringList userLanguages() {
  const QString locale = QLocale::system().name();
  return {locale, locale.section(u'_', 0, 0)};
}

}  // namespace

CalendarServerRegistry::CalendarServerRegistry(SessionBus& bus, Callbacks callbacks)
    : bus_(bus), callbacks_(std::move(callbacks)), hasRun_(hasRunBefore()) {
  connections_ = bus_.observeConnections([this](QDBusConnection& connection) { join(connection); });
  if (auto connection = bus_.connection()) join(*connection);
}

void CalendarServerRegistry::join(QDBusConnection& connection) {
  isBusKnown_ = false;
  isListing_ = false;
  activatable_.clear();
  running_.clear();
  services_ = std::make_unique<QDBusServiceWatcher>(family + u'*', connection,
                                                    QDBusServiceWatcher::WatchForOwnerChange);
  QObject::connect(services_.get(), &QDBusServiceWatcher::serviceOwnerChanged, services_.get(),
                   [this](const QString& name, const QString& oldOwner, const QString& newOwner) {
                     handleOwner(name, oldOwner, newOwner);
                   });
  if (isStarted_) watchChanges();
  ask("ListActivatableNames", activatable_, [this] {
    ask("ListNames", running_, [this] {
      isBusKnown_ = true;
      hasRun_ |= newest(running_, "Sources").has_value();
      refresh();
    });
  });
  callbacks_.onJoin();
}

void CalendarServerRegistry::ask(const char* question, QStringList& answer,
                                 std::function<void()> next) {
  const auto bus = QStringLiteral("org.freedesktop.DBus");
  CalendarServerCall{bus, QStringLiteral("/org/freedesktop/DBus"), bus, QLatin1String(question)}
      .send(*bus_.connection(), *services_,
            [&answer, next = std::move(next)](const QDBusMessage& reply) {
              answer = reply.arguments().value(0).toStringList().filter(family);
              if (reply.type() == QDBusMessage::ReplyMessage) next();
            });
}

void CalendarServerRegistry::handleOwner(const QString& name, const QString& oldOwner,
                                         const QString& newOwner) {
  running_.removeAll(name);
  if (!newOwner.isEmpty()) running_.append(name);
  const bool isSources = version(name, "Sources").has_value();
  if (!oldOwner.isEmpty()) callbacks_.onEnd(oldOwner);
  if (!oldOwner.isEmpty() && isSources) callbacks_.onFailure();
  if (newOwner.isEmpty() || !(isSources || version(name, "Calendar"))) return;
  hasRun_ = true;
  callbacks_.onStart();
  refresh();
}

std::optional<QString> CalendarServerRegistry::service(const char* kind) const {
  const auto running = newest(running_, kind);
  return running || !hasRun_ ? running : newest(activatable_, kind);
}

bool CalendarServerRegistry::isPresent() const {
  return isBusKnown_ ? service("Sources").has_value() : hasRun_;
}

std::optional<QString> CalendarServerRegistry::factory() const { return service("Calendar"); }

void CalendarServerRegistry::start() {
  isStarted_ = true;
  watchChanges();
  refresh();
}

void CalendarServerRegistry::stop() {
  isStarted_ = false;
  news_.reset();
  calendars_.clear();
  conditions_.clear();
}

void CalendarServerRegistry::refresh() {
  const auto sources = service("Sources");
  const auto& connection = bus_.connection();
  if (!isStarted_ || !sources || !connection) return;
  isListStale_ = isListing_;
  if (std::exchange(isListing_, true)) return;
  CalendarServerCall{*sources, managerPath, objectManager, QStringLiteral("GetManagedObjects"),
                     {},       hasRun_}
      .send(*connection, *services_, [this](const QDBusMessage& reply) {
        isListing_ = false;
        if (!isStarted_) return;
        if (reply.type() != QDBusMessage::ReplyMessage) return callbacks_.onFailure();
        takeList(reply);
        if (std::exchange(isListStale_, false)) refresh();
      });
}

void CalendarServerRegistry::takeList(const QDBusMessage& reply) {
  using Interfaces = QMap<QString, QVariantMap>;
  const auto objects = qdbus_cast<QMap<QDBusObjectPath, Interfaces>>(reply.arguments().value(0));
  const auto languages = userLanguages();
  std::vector<CalendarServerEntry> entries;
  conditions_.clear();
  for (const auto& interfaces : objects) {
    const auto source = interfaces.value(sourceInterface);
    const auto uid = source.value("UID").toString().toStdString();
    const auto data = source.value("Data").toString();
    const bool isConnected = source.value("ConnectionStatus").toString() == u"connected";
    entries.push_back(CalendarServerEntry::parse(uid, data, languages));
    conditions_[uid] = isConnected ? data + QLatin1String("connected") : data;
  }
  calendars_ = calendarsAmong(entries);
  callbacks_.onChange();
}

QString CalendarServerRegistry::condition(const std::string& calendarIdentifier) const {
  const auto found = conditions_.find(calendarIdentifier);
  return found == conditions_.end() ? QString() : found->second;
}

void CalendarServerRegistry::watchChanges() {
  auto connection = bus_.connection();
  if (!connection) return;
  news_ = std::make_unique<QTimer>();
  news_->setSingleShot(true);
  QObject::connect(news_.get(), &QTimer::timeout, news_.get(), [this] { refresh(); });
  // Whoever sends them: for a sender's sake the library would ask the bus, and wait.
  const QString anyone;
  for (const char* signal : {"InterfacesAdded", "InterfacesRemoved"})
    connection->connect(anyone, managerPath, objectManager, QLatin1String(signal), news_.get(),
                        SLOT(start()));
  const QString anyPath;
  connection->connect(anyone, anyPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                      QStringLiteral("PropertiesChanged"), {sourceInterface}, QString(),
                      news_.get(), SLOT(start()));
}

}  // namespace valdrix::desktop
