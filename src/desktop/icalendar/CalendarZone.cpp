#include "desktop/icalendar/CalendarZone.h"

#include <algorithm>
#include <map>
#include <mutex>

#include <QDateTime>

namespace valdrix::desktop {

using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

/// A zone is made from the system's tables in a tenth of a millisecond, and texts name the same few
/// over and over.
class ZoneCache {
 public:
  std::shared_ptr<const CalendarZone> find(const QByteArray& id) {
    const std::scoped_lock lock(mutex_);
    const auto found = zones_.find(id);
    return found == zones_.end() ? nullptr : found->second;
  }

  void add(const QByteArray& id, std::shared_ptr<const CalendarZone> zone) {
    constexpr std::size_t maximumCount = 64;
    const std::scoped_lock lock(mutex_);
    if (zones_.size() >= maximumCount) zones_.clear();
    zones_.insert_or_assign(id, std::move(zone));
  }

 private:
  std::mutex mutex_;
  std::map<QByteArray, std::shared_ptr<const CalendarZone>> zones_;
};

ZoneCache& zoneCache() {
  static ZoneCache cache;
  return cache;
}

QDateTime newYear(int year) { return {QDate(year, 1, 1), QTime(0, 0), Qt::UTC}; }

QTimeZone::OffsetDataList transitionsOf(const QTimeZone& zone) {
  return zone.transitions(newYear(1900), newYear(2200));
}

CalendarZone madeFrom(const QTimeZone& zone) {
  std::vector<CalendarZone::Change> changes;
  seconds offset(zone.offsetFromUtc(newYear(1900)));
  for (const QTimeZone::OffsetData& data : transitionsOf(zone)) {
    const seconds after(data.offsetFromUtc);
    if (after != offset)
      changes.push_back({sys_seconds(seconds(data.atUtc.toSecsSinceEpoch())), offset, after});
    offset = after;
  }
  return changes.empty() ? CalendarZone(offset) : CalendarZone(std::move(changes));
}

/// QTimeZone makes a file name of it.
bool canBeIanaId(std::string_view name) {
  constexpr std::string_view marks = "_+-/:";
  const auto isAllowed = [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           marks.find(c) != std::string_view::npos;
  };
  return !name.empty() && name.size() <= 64 && name.front() != '/' &&
         std::ranges::all_of(name, isAllowed);
}

std::shared_ptr<const CalendarZone> byIanaId(std::string_view name) {
  if (!canBeIanaId(name)) return nullptr;
  const QByteArray id(name.data(), static_cast<qsizetype>(name.size()));
  if (auto known = zoneCache().find(id)) return known;
  const QTimeZone zone(id);
  // Any word is a rule without daylight saving to QTimeZone, which makes it UTC by another name.
  const bool isWord = name.find('/') == std::string_view::npos && transitionsOf(zone).isEmpty();
  const bool isKnown = zone.isValid() && (!isWord || name.starts_with("UTC") || name == "GMT");
  return isKnown ? CalendarZone::of(zone) : nullptr;
}

std::shared_ptr<const CalendarZone> byWindowsName(std::string_view name) {
  if (name.empty() || name.size() > 64) return nullptr;
  const QByteArray windows(name.data(), static_cast<qsizetype>(name.size()));
  const QByteArray id = QTimeZone::windowsIdToDefaultIanaId(windows);
  return byIanaId({id.constData(), static_cast<std::size_t>(id.size())});
}

}  // namespace

CalendarZone::CalendarZone(std::vector<Change> changes) : changes_(std::move(changes)) {
  std::ranges::stable_sort(changes_, {}, &Change::at);
  firstOffset_ = changes_.front().before;
}

sys_seconds CalendarZone::toInstant(WallTime wall) const {
  // Both in a gap and in a repeat the offset before the change holds, so the one after it holds
  // from where the clocks of both sides have passed it.
  const auto hasPassed = [wall](const Change& change) {
    return wall.time_since_epoch() >=
           change.at.time_since_epoch() + std::max(change.before, change.after);
  };
  const auto next = std::ranges::partition_point(changes_, hasPassed);
  const seconds offset = next == changes_.begin() ? firstOffset_ : std::prev(next)->after;
  return sys_seconds(wall.time_since_epoch() - offset);
}

WallTime CalendarZone::toWall(sys_seconds instant) const {
  const auto next = std::ranges::upper_bound(changes_, instant, {}, &Change::at);
  const seconds offset = next == changes_.begin() ? firstOffset_ : std::prev(next)->after;
  return WallTime(instant.time_since_epoch() + offset);
}

std::shared_ptr<const CalendarZone> CalendarZone::utc() {
  static const auto zone = std::make_shared<const CalendarZone>(seconds(0));
  return zone;
}

std::shared_ptr<const CalendarZone> CalendarZone::of(const QTimeZone& zone) {
  const QByteArray id = zone.id();
  if (auto known = zoneCache().find(id)) return known;
  auto made = std::make_shared<const CalendarZone>(madeFrom(zone));
  zoneCache().add(id, made);
  return made;
}

std::shared_ptr<const CalendarZone> CalendarZone::named(std::string_view tzid) {
  if (auto zone = byIanaId(tzid)) return zone;
  if (auto zone = byWindowsName(tzid)) return zone;
  // The longest of the last three parts that is a name, as in America/Argentina/Salta.
  std::size_t slash = tzid.size();
  std::shared_ptr<const CalendarZone> found;
  for (int parts = 0; parts < 3 && slash > 0; ++parts) {
    slash = tzid.rfind('/', slash - 1);
    if (slash == std::string_view::npos) break;
    if (auto zone = byIanaId(tzid.substr(slash + 1))) found = std::move(zone);
  }
  return found;
}

}  // namespace valdrix::desktop
