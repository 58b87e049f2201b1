#include "desktop/vdir/VdirCalendars.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

#include "desktop/vdir/Fnv1a.h"

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

std::string withoutCommas(std::string name) {
  for (std::size_t at = 0; (at = name.find(',', at)) != std::string::npos;)
    name.replace(at, 1, "%2C");
  return name;
}

std::string hexadecimal(std::uint64_t hash) {
  std::array<char, 17> text{};
  const auto size = std::snprintf(text.data(), text.size(), "%08" PRIx64, hash & 0xffffffffU);
  return {text.data(), static_cast<std::size_t>(size)};
}

}  // namespace

VdirCalendars::VdirCalendars(const std::map<std::string, std::string>& environment) {
  if (const auto home = environment.find("HOME"); home != environment.end()) home_ = home->second;
}

void VdirCalendars::add(const VdirFolder& folder) {
  const auto& where = folder.where();
  std::uint32_t own = 0;
  if (folder.isCalendar()) own = addCalendar(where, where.path, folder.title(), folder.color());
  std::map<std::string, std::uint32_t> collections;
  for (const auto& [name, title] : folder.collections())
    collections[name] = addCalendar(where, where.path / name, title, std::nullopt);
  for (const auto& [name, events] : folder.events()) {
    const auto collection = collections.find(name);
    const auto calendar = collection == collections.end() ? own : collection->second;
    for (const auto& event : events) occurrences_.push_back({event, calendar});
  }
}

std::uint32_t VdirCalendars::addCalendar(const CalendarFolder& where, const fs::path& path,
                                         const std::string& title,
                                         const std::optional<view::Color>& color) {
  const bool isFolder = path == where.path;
  const auto fileTitle = isFolder ? path.filename() : path.stem();
  calendars_.push_back({.calendarIdentifier = identifierFor(path),
                        .title = title.empty() ? fileTitle.string() : title,
                        .color = color,
                        .sourceTitle = accountFor(where.root)});
  return static_cast<std::uint32_t>(calendars_.size() - 1);
}

std::string VdirCalendars::identifierFor(const fs::path& path) {
  auto identifier = withoutCommas(path.filename().string());
  if (taken_.contains(identifier)) identifier += '~' + hexadecimal(fnv1a(path.string()));
  while (!taken_.insert(identifier).second) identifier += '~';
  return identifier;
}

std::string VdirCalendars::accountFor(const fs::path& root) const {
  const auto path = root.string();
  const bool isBelowHome = !home_.empty() && path.starts_with(home_ + '/');
  return isBelowHome ? '~' + path.substr(home_.size()) : path;
}

VdirSnapshot VdirCalendars::snapshot(platform::Instant today) && {
  return {std::move(calendars_), std::move(occurrences_), today};
}

}  // namespace valdrix::desktop
