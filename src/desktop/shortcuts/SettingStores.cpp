#include "desktop/shortcuts/SettingStores.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace valdrix::desktop {

namespace {

/// Takes the first one off.
template <class T>
T takeFirst(std::vector<T>& all) {
  T first = std::move(all.front());
  all.erase(all.begin());
  return first;
}

}  // namespace

SettingStore* SettingStores::named(const std::string& name) const {
  const auto store = std::ranges::find(stores_, name, [](const auto& one) { return one->name(); });
  return store == stores_.end() ? nullptr : store->get();
}

void SettingStores::find(Changes patterns, Changes found,
                         std::function<void(const Changes&)> done) const {
  if (patterns.empty()) return done(found);
  const auto change = takeFirst(patterns);
  auto next = lifetime_.weak(
      [this, change, patterns = std::move(patterns), found = std::move(found),
       done = std::move(done)](const std::optional<std::vector<std::string>>& names) {
        auto all = found;
        for (const auto& name : names.value_or(std::vector{change.setting})) {
          all.push_back(change);
          all.back().setting = name;
        }
        find(patterns, std::move(all), done);
      });
  if (auto* const store = named(change.store)) return store->find(change.setting, std::move(next));
  next(std::nullopt);
}

void SettingStores::read(std::vector<Setting> settings, Readings readings,
                         std::function<void(const Readings&)> done) const {
  if (settings.empty()) return done(readings);
  const auto setting = takeFirst(settings);
  auto next =
      lifetime_.weak([this, setting, settings = std::move(settings), readings = std::move(readings),
                      done = std::move(done)](const std::optional<SettingStore::Value>& value) {
        auto all = readings;
        all.insert_or_assign(setting, value);
        read(settings, std::move(all), done);
      });
  if (auto* const store = named(setting.first)) return store->read(setting.second, std::move(next));
  next(std::nullopt);
}

void SettingStores::write(std::vector<CustodyPlan::Write> writes, std::function<bool()> isWanted,
                          std::function<void()> done) const {
  if (writes.empty() || !isWanted()) return done();
  const auto first = takeFirst(writes);
  auto next = lifetime_.weak([this, writes = std::move(writes), isWanted = std::move(isWanted),
                              done = std::move(done)](bool) { write(writes, isWanted, done); });
  if (auto* const store = named(first.setting.first))
    return store->write(first.setting.second, first.value, std::move(next));
  next(false);
}

}  // namespace valdrix::desktop
