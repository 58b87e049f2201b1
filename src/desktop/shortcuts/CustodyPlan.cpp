#include "desktop/shortcuts/CustodyPlan.h"

#include <algorithm>

namespace valdrix::desktop {

namespace {

using Entry = CustodyRecord::Entry;
using Setting = CustodyPlan::Setting;
using Value = SettingStore::Value;

Setting settingOf(const Entry& entry) { return {entry.store, entry.setting}; }
Setting settingOf(const SettingChange& change) { return {change.store, change.setting}; }

std::vector<std::string> addedBy(const SettingChange& change) {
  return change.kind == SettingChange::Kind::add ? change.texts : std::vector<std::string>();
}

/// Makes a plan, setting by setting.
class Planner {
 public:
  Planner(const std::string& desktop, const std::vector<Entry>& entries,
          const CustodyPlan::Readings& readings)
      : desktop_(desktop), entries_(entries), readings_(readings) {}

  void giveBack(const Entry& entry) {
    const auto reading = readings_.find(settingOf(entry));
    if (reading == readings_.end() || !reading->second) {
      plan_.entries.push_back(entry);
      plan_.unreadable.push_back(settingOf(entry));
      return;
    }
    const auto& current = *reading->second;
    const auto value = valueToGiveBack(entry, current);
    if (value == current) return;
    plan_.entries.push_back(entry);
    // What refers to other settings goes before them.
    auto& writes = plan_.writes;
    writes.insert(entry.added.empty() ? writes.end() : writes.begin(), {settingOf(entry), value});
  }

  void bringAbout(const SettingChange& change) {
    const auto reading = readings_.find(settingOf(change));
    const auto* const entry = entryOf(change);
    if (reading == readings_.end() || !reading->second) return miss(change, entry);
    const auto& current = *reading->second;
    const auto before = beforeOf(change, entry, current);
    const auto wanted = change.applied(before);
    if (!wanted) return miss(change, entry);
    if (entry || change.isOwn || *wanted != current)
      plan_.entries.push_back(
          {desktop_, change.store, change.setting, before, *wanted, addedBy(change)});
    if (*wanted == current) return;
    auto& writes = plan_.writes;
    writes.insert(entry && isLess(change, *entry) ? writes.begin() : writes.end(),
                  {settingOf(change), *wanted});
    plan_.open.insert(change.keys.begin(), change.keys.end());
  }

  [[nodiscard]] CustodyPlan plan() && { return std::move(plan_); }

 private:
  [[nodiscard]] const Entry* entryOf(const SettingChange& change) const {
    const auto found = std::ranges::find(entries_, settingOf(change),
                                         [](const Entry& entry) { return settingOf(entry); });
    return found == entries_.end() ? nullptr : &*found;
  }

  static Value beforeOf(const SettingChange& change, const Entry* entry, const Value& current) {
    if (change.isOwn) return std::nullopt;
    return entry ? valueToGiveBack(*entry, current) : current;
  }

  static Value valueToGiveBack(const Entry& entry, const Value& current) {
    if (current == entry.written) return entry.before;
    return entry.added.empty() ? current : withoutElements(current, entry.added);
  }

  /// Whether the change adds less to a list than was added.
  static bool isLess(const SettingChange& change, const Entry& entry) {
    return std::ranges::any_of(entry.added, [&](const std::string& text) {
      return std::ranges::find(change.texts, text) == change.texts.end();
    });
  }

  void miss(const SettingChange& change, const Entry* entry) {
    if (entry) plan_.entries.push_back(*entry);
    if (change.isOptional) return;
    plan_.unreadable.push_back(settingOf(change));
    plan_.open.insert(change.keys.begin(), change.keys.end());
  }

  const std::string& desktop_;
  const std::vector<Entry>& entries_;
  const CustodyPlan::Readings& readings_;
  CustodyPlan plan_;
};

}  // namespace

CustodyPlan CustodyPlan::make(const std::string& desktop, const std::vector<Entry>& entries,
                              const std::vector<SettingChange>& changes, const Readings& readings) {
  Planner planner(desktop, entries, readings);
  for (const auto& entry : entries) {
    const bool isWanted = std::ranges::any_of(changes, [&](const SettingChange& change) {
      return settingOf(change) == settingOf(entry);
    });
    if (!isWanted) planner.giveBack(entry);
  }
  for (const auto& change : changes) planner.bringAbout(change);
  return std::move(planner).plan();
}

std::vector<Entry> CustodyPlan::evidence(const std::string& desktop,
                                         const std::vector<SettingChange>& changes,
                                         const Readings& readings) {
  std::vector<Entry> entries;
  std::set<platform::MediaKey> keys;
  std::set<platform::MediaKey> otherKeys;
  for (const auto& change : changes) {
    const auto reading = readings.find(settingOf(change));
    const bool isKnown = reading != readings.end() && reading->second;
    const bool isEvident = isKnown && change.isEvidentIn(*reading->second);
    if (!isEvident && change.isOptional) continue;
    (isEvident ? keys : otherKeys).insert(change.keys.begin(), change.keys.end());
    if (isEvident)
      entries.push_back({desktop, change.store, change.setting, change.undone(*reading->second),
                         *reading->second, addedBy(change)});
  }
  if (std::ranges::includes(otherKeys, keys)) return {};
  return entries;
}

}  // namespace valdrix::desktop
