#include "desktop/calendarserver/CalendarServerObjects.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <string_view>
#include <tuple>

#include <QByteArray>

#include "desktop/icalendar/IcalContentLines.h"
#include "desktop/icalendar/IcalValues.h"
#include "desktop/icalendar/IcalendarText.h"

namespace valdrix::desktop {

namespace {

constexpr std::size_t maximumUidSize = 10000;

/// Ends a piece of work.
class Limit {
 public:
  explicit Limit(const std::atomic_bool& isEnding) : isEnding_(isEnding) {}

  [[nodiscard]] bool isReached() const {
    constexpr double mostSeconds = 5;
    return isEnding_ || threadSeconds() - start_ > mostSeconds;
  }

 private:
  static double threadSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  }

  const std::atomic_bool& isEnding_;
  double start_ = threadSeconds();
};

/// What has to be known of a text before its events are read.
struct Outline {
  std::string uid;
  /// Whether it is one of the objects that make up a series.
  bool isOfSeries = false;
  std::set<QString> unknownZones;
};

Outline outline(std::string_view text) {
  Outline outline;
  IcalContentLines lines(text);
  // Properties of the object itself stand at depth 1, or 2 where a calendar is around it.
  int depth = 0;
  int ownDepth = 1;
  while (const auto line = lines.next()) {
    if (line->is("BEGIN") && depth++ == 0 && isSameWord(line->value, "VCALENDAR")) ownDepth = 2;
    if (line->is("END")) --depth;
    if (depth != ownDepth) continue;
    if (line->is("UID")) outline.uid = parseText(line->value, maximumUidSize);
    outline.isOfSeries |= line->is("RRULE") || line->is("RDATE") || line->is("RECURRENCE-ID");
    const auto zone = line->parameter("TZID");
    if (zone && !QTimeZone::isTimeZoneIdAvailable(QByteArray(zone->data(), std::ssize(*zone))))
      outline.unknownZones.insert(QString::fromUtf8(zone->data(), std::ssize(*zone)));
  }
  return outline;
}

/// One text of all objects of a UID and the zones that they name.
std::string joined(const QStringList& objects, const QString& zones) {
  const QString begin = QStringLiteral("BEGIN:VCALENDAR\r\nVERSION:2.0\r\n") + zones;
  const auto& first = objects.front();
  // The server gives a bare component, or a whole calendar where there are several of a UID.
  if (first.startsWith(u"BEGIN:VCALENDAR"))
    return (begin + first.sliced(first.indexOf(u'\n') + 1)).toStdString();
  return (begin + objects.join(QLatin1String("\r\n")) + QLatin1String("\r\nEND:VCALENDAR\r\n"))
      .toStdString();
}

void keepEarliest(std::vector<platform::Event>& events) {
  std::ranges::sort(events, {}, [](const platform::Event& event) {
    return std::tie(event.startDate, event.endDate, event.eventIdentifier, event.title);
  });
  if (std::ssize(events) > CalendarServerObjects::maximumCount)
    events.resize(CalendarServerObjects::maximumCount);
}

}  // namespace

CalendarServerObjects::CalendarServerObjects(const QStringList& texts,
                                             const std::atomic_bool& isEnding) {
  const Limit limit(isEnding);
  for (const auto& text : texts.first(std::min(texts.size(), maximumCount))) {
    if (limit.isReached()) return;
    auto object = outline(text.toStdString());
    if (object.uid.empty()) continue;
    auto& group = groups_[QString::fromStdString(object.uid)];
    group.texts.append(text);
    group.mayBeIncomplete |= object.isOfSeries;
    group.unknownZones.merge(object.unknownZones);
  }
}

QStringList CalendarServerObjects::incompleteUids() const {
  QStringList uids;
  for (const auto& [uid, group] : groups_)
    if (group.mayBeIncomplete) uids.append(uid);
  return uids;
}

std::set<QString> CalendarServerObjects::findUnknownZones(const std::atomic_bool& isEnding) {
  const Limit limit(isEnding);
  std::set<QString> zones;
  for (auto& [uid, group] : groups_) {
    if (limit.isReached()) break;
    if (group.mayBeIncomplete)
      for (const auto& text : group.texts)
        group.unknownZones.merge(outline(text.toStdString()).unknownZones);
    zones.insert(group.unknownZones.begin(), group.unknownZones.end());
  }
  return zones;
}

std::vector<platform::Event> CalendarServerObjects::occurrences(
    platform::Instant start, platform::Instant end, const QTimeZone& local,
    const std::map<QString, QString>& zones, const std::string& prefix,
    const std::atomic_bool& isEnding) const {
  std::vector<platform::Event> all;
  const Limit limit(isEnding);
  const auto isOver = [&limit] { return limit.isReached(); };
  for (const auto& [uid, group] : groups_) {
    if (isOver()) break;
    QString zoneText;
    for (const auto& name : group.unknownZones)
      if (const auto zone = zones.find(name); zone != zones.end()) zoneText += zone->second;
    const auto text = IcalendarText::parse(joined(group.texts, zoneText), isOver);
    std::ranges::move(text.occurrences(start, end, local, isOver), std::back_inserter(all));
    if (std::ssize(all) > 2 * maximumCount) keepEarliest(all);
  }
  keepEarliest(all);
  for (auto& event : all)
    if (event.eventIdentifier) event.eventIdentifier = prefix + *event.eventIdentifier;
  return all;
}

}  // namespace valdrix::desktop
