#include "desktop/calendarserver/CalendarServerCalendar.h"

#include <algorithm>
#include <utility>

#include <QDBusObjectPath>
#include <QDateTime>

#include "desktop/calendarserver/CalendarServerCall.h"

namespace valdrix::desktop {

namespace {

const QString calendarInterface = QStringLiteral("org.gnome.evolution.dataserver.Calendar");
const QString viewInterface = QStringLiteral("org.gnome.evolution.dataserver.CalendarView");

// A change comes with several notices, and a server that fills a calendar sends thousands.
constexpr double shortestPause = 0.05;  // seconds
constexpr double longestRest = 2;
// Reading takes up no more than this part of the time while changes go on.
constexpr double mostOfTheTime = 0.5;
constexpr int mostCallsUnderWay = 32;
constexpr std::size_t mostZones = 200;
constexpr qsizetype largestZone = 100'000;  // several times what two centuries of changes take

QString queryTime(platform::Instant instant) {
  using namespace std::chrono;
  const platform::Instant first = sys_days(1900y / 1 / 1);
  const platform::Instant last = sys_days(2999y / 1 / 1);
  const auto time = std::clamp(instant, first, last).time_since_epoch().count();
  return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(u"yyyyMMdd'T'HHmmss'Z'");
}

QString query(const CalendarServerCalendar::Span& span) {
  // Rounded outwards to seconds, and a day further for times without a zone, which the server may
  // see in another zone than we do.
  constexpr auto margin = std::chrono::hours(25);
  // Twice negated, or else the server looks things up in an index that does not have an occurrence
  // which was put off beyond the end of its series.
  return QStringLiteral("(not (not (occur-in-time-range? (make-time \"%1\") (make-time \"%2\"))))")
      .arg(queryTime(span.start - margin), queryTime(span.end + margin));
}

bool isAnswer(const QDBusMessage& reply) { return reply.type() == QDBusMessage::ReplyMessage; }

QString textOf(const QDBusMessage& reply) {
  return isAnswer(reply) ? reply.arguments().value(0).toString() : QString();
}

}  // namespace

CalendarServerCalendar::CalendarServerCalendar(Server server, std::string uid,
                                               platform::RunLoop& runLoop,
                                               CalendarServerWorker& worker, Callbacks callbacks)
    : server_(std::move(server)),
      uid_(std::move(uid)),
      runLoop_(runLoop),
      worker_(worker),
      callbacks_(std::move(callbacks)) {
  news_.setSingleShot(true);
  QObject::connect(&news_, &QTimer::timeout, &news_, [this] { fetchSoon(); });
  CalendarServerCall{server_.factory,
                     QStringLiteral("/org/gnome/evolution/dataserver/CalendarFactory"),
                     QStringLiteral("org.gnome.evolution.dataserver.CalendarFactory"),
                     QStringLiteral("OpenCalendar"),
                     {QString::fromStdString(uid_)},
                     server_.mayStart}
      .send(server_.connection, calls_, [this](const QDBusMessage& reply) { openAt(reply); });
}

CalendarServerCalendar::~CalendarServerCalendar() {
  if (owner_.isEmpty()) return;
  if (!view_.isEmpty())
    CalendarServerCall{owner_, view_, viewInterface, QStringLiteral("Dispose")}.send(
        server_.connection);
  CalendarServerCall{owner_, path_, calendarInterface, QStringLiteral("Close")}.send(
      server_.connection);
}

void CalendarServerCalendar::call(const char* method, QVariantList arguments, Answer onReply) {
  CalendarServerCall{service_, path_, calendarInterface, QLatin1String(method),
                     std::move(arguments)}
      .send(server_.connection, calls_, std::move(onReply));
}

void CalendarServerCalendar::openAt(const QDBusMessage& place) {
  if (!isAnswer(place)) return callbacks_.onOpened(false);
  path_ = place.arguments().value(0).toString();
  service_ = place.arguments().value(1).toString();
  call("Open", {}, [this](const QDBusMessage& reply) {
    if (!isAnswer(reply)) return callbacks_.onOpened(false);
    owner_ = reply.service();
    callbacks_.onOpened(true);
    watch();
    fetch();
  });
}

void CalendarServerCalendar::watch() {
  // The revision changes at once, but some calendars have none; a view sees all changes, but late.
  // Neither says reliably what has changed: a view forgets the rest of a series of which one
  // occurrence was removed.
  const QString anyone;  // for a sender's sake the library would ask the bus, and wait
  server_.connection.connect(anyone, path_, QStringLiteral("org.freedesktop.DBus.Properties"),
                             QStringLiteral("PropertiesChanged"), &news_, SLOT(start()));
  call("GetView", {QStringLiteral("#t")}, [this](const QDBusMessage& reply) {
    view_ = qvariant_cast<QDBusObjectPath>(reply.arguments().value(0)).path();
    if (!isAnswer(reply) || view_.isEmpty()) return;
    for (const char* signal : {"ObjectsAdded", "ObjectsModified", "ObjectsRemoved"})
      server_.connection.connect(QString(), view_, viewInterface, QLatin1String(signal), &news_,
                                 SLOT(start()));
    // Without the objects that are there already, and with nothing but the UIDs of others.
    constexpr unsigned noFlags = 0;
    const auto tell = [this](const char* method, QVariantList arguments) {
      CalendarServerCall{owner_, view_, viewInterface, QLatin1String(method), std::move(arguments)}
          .send(server_.connection);
    };
    tell("SetFlags", {noFlags});
    tell("SetFieldsOfInterest", {QStringList{QStringLiteral("UID")}});
    tell("Start", {});
  });
}

void CalendarServerCalendar::show(const Span& span) {
  if (span_ == span) return;
  span_ = span;
  fetch();
}

void CalendarServerCalendar::fetchSoon() {
  if (nextFetch_) return;
  const double rest = std::min(fetchDuration_ / mostOfTheTime, longestRest);
  const double pause = std::max(shortestPause, fetchEnd_ + rest - runLoop_.now());
  nextFetch_ = runLoop_.scheduleTimer(pause, false, [this] {
    nextFetch_.reset();
    fetch();
  });
}

void CalendarServerCalendar::fetch() {
  if (owner_.isEmpty() || !span_) return;
  isStale_ = isFetching_;
  if (std::exchange(isFetching_, true)) return;
  fetchStart_ = runLoop_.now();
  fetchedSpan_ = span_;
  call("GetObjectList", {query(*span_)}, [this](const QDBusMessage& reply) {
    if (!isAnswer(reply)) return endFetch();
    sort(reply.arguments().value(0).toStringList());
  });
}

void CalendarServerCalendar::sort(const QStringList& texts) {
  struct Sorted {
    std::shared_ptr<CalendarServerObjects> objects;
    QStringList incompleteUids;
  };
  worker_.run(
      [texts](const std::atomic_bool& isEnding) {
        auto objects = std::make_shared<CalendarServerObjects>(texts, isEnding);
        return Sorted{objects, objects->incompleteUids()};
      },
      lifetime_.weak([this](const Sorted& sorted) {
        objects_ = sorted.objects;
        incompleteUids_ = sorted.incompleteUids;
        completeObjects();
      }));
}

void CalendarServerCalendar::completeObjects() {
  while (callsUnderWay_ < mostCallsUnderWay && !incompleteUids_.isEmpty()) {
    ++callsUnderWay_;
    const auto uid = incompleteUids_.takeLast();
    call("GetObject", {uid, QString()}, [this, uid](const QDBusMessage& reply) {
      --callsUnderWay_;
      if (const auto text = textOf(reply); !text.isEmpty()) objects_->complete(uid, text);
      completeObjects();
    });
  }
  if (callsUnderWay_ == 0) findZones();
}

void CalendarServerCalendar::findZones() {
  worker_.run([objects = objects_](
                  const std::atomic_bool& isEnding) { return objects->findUnknownZones(isEnding); },
              lifetime_.weak([this](const std::set<QString>& unknown) {
                for (const auto& zone : unknown)
                  if (!zones_.contains(zone) && zones_.size() < mostZones) {
                    zones_[zone] = QString();
                    unknownZones_.append(zone);
                  }
                completeZones();
              }));
}

void CalendarServerCalendar::completeZones() {
  if (unknownZones_.isEmpty()) return expand();
  const auto zone = unknownZones_.takeLast();
  call("GetTimezone", {zone}, [this, zone](const QDBusMessage& reply) {
    if (auto text = textOf(reply); text.size() <= largestZone) zones_[zone] = std::move(text);
    completeZones();
  });
}

void CalendarServerCalendar::expand() {
  // The texts are let go over there too.
  worker_.run(
      [objects = std::exchange(objects_, nullptr), zones = zones_, span = *fetchedSpan_,
       prefix = uid_ + ":"](const std::atomic_bool& isEnding) -> Events {
        return std::make_shared<const std::vector<platform::Event>>(
            objects->occurrences(span.start, span.end, span.local, zones, prefix, isEnding));
      },
      lifetime_.weak([this](const Events& events) {
        endFetch();
        callbacks_.onEvents(events);
      }));
}

void CalendarServerCalendar::endFetch() {
  isFetching_ = false;
  fetchEnd_ = runLoop_.now();
  fetchDuration_ = fetchEnd_ - fetchStart_;
  if (std::exchange(isStale_, false)) fetchSoon();
}

}  // namespace valdrix::desktop
