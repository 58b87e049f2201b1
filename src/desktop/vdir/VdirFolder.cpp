#include "desktop/vdir/VdirFolder.h"

#include <algorithm>
#include <charconv>
#include <dirent.h>
#include <fcntl.h>
#include <utility>

#include "desktop/icalendar/IcalendarText.h"
#include "desktop/session/WholeFile.h"
#include "desktop/vdir/NextStartGlance.h"

namespace valdrix::desktop {

using platform::Event;

namespace {

constexpr std::size_t maximumAppearanceSize = 4096;

std::string trimmed(const std::string& text) {
  constexpr auto spaces = " \t\r\n";
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

/// `#RRGGBB` or `#RRGGBBAA`.
std::optional<view::Color> parseColor(std::string_view text) {
  if ((text.size() != 7 && text.size() != 9) || text.front() != '#') return std::nullopt;
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (text.size() == 7) number = number << 8U | 0xffU;
  const auto component = [&](unsigned shift) { return (number >> shift & 0xffU) / 255.0; };
  return view::Color{component(24), component(16), component(8), component(0)};
}

bool areEqual(const VdirFolder::Events& shown, const std::vector<Event>& events) {
  return std::ranges::equal(shown, events, {}, [](const auto& event) { return *event; });
}

}  // namespace

VdirFolder::VdirFolder(CalendarFolder where, VdirFiles known)
    : where_(std::move(where)), files_(std::move(known)) {}

bool VdirFolder::holds(std::string_view name) const {
  return where_.file.empty() ? isEventFileName(name) : name == where_.file;
}

bool VdirFolder::isCalendar() const {
  return where_.file.empty() && (hasAppearance_ || files_.size() > collections_.size());
}

void VdirFolder::queue(VdirFiles::value_type& entry) {
  if (!std::exchange(entry.second.isQueued, true)) queue_.push_back(&entry);
}

void VdirFolder::queue(std::string_view name) {
  auto found = files_.find(name);
  if (found == files_.end()) found = files_.emplace(std::string(name), VdirFile()).first;
  queue(*found);
}

void VdirFolder::queueFor(const VdirHorizon& horizon) {
  for (auto& entry : files_)
    if (horizon.mayHold(entry.second.nextStart) || events_.contains(entry.first)) queue(entry);
}

void VdirFolder::queueAll() {
  for (auto& entry : files_) queue(entry);
}

void VdirFolder::scan(DiskLooks& looks) {
  looks.begin(where_.path);
  for (auto& entry : files_) entry.second.isSeen = false;
  const auto close = [](DIR* stream) { ::closedir(stream); };
  const std::unique_ptr<DIR, decltype(close)> stream(::opendir(where_.path.c_str()), close);
  while (const dirent* entry = stream ? ::readdir(stream.get()) : nullptr) {
    if (looks.isStopped()) return;
    looks.begin(where_.path);
    if (entry->d_type != DT_DIR && holds(entry->d_name))
      scanFile(::dirfd(stream.get()), entry->d_name);
  }
  looks.end();
  for (auto& entry : files_)
    if (!entry.second.isSeen) queue(entry);
  std::ranges::sort(queue_, {}, [](const auto* entry) { return entry->second.stamp.changed; });
}

void VdirFolder::scanFile(int folder, const char* name) {
  const auto stamp = stampOfFile(folder, name);
  if (!stamp) return;
  const auto [entry, isNew] = files_.try_emplace(name);
  entry->second.isSeen = true;
  if (entry->second.stamp == *stamp) return;
  entry->second.stamp = *stamp;
  queue(*entry);
}

int VdirFolder::directory() {
  if (!directory_)
    directory_ = UniqueFd(::open(where_.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return directory_.get();
}

bool VdirFolder::readNext(const VdirHorizon& horizon, DiskLooks& looks) {
  auto& entry = *queue_.back();
  queue_.pop_back();
  entry.second.isQueued = false;
  std::string bytes;
  looks.begin(where_.path);
  const auto reading = readFile(directory(), entry.first.c_str(), IcalendarText::maximumSize, bytes,
                                entry.second.stamp);
  if (queue_.empty()) directory_ = UniqueFd();
  looks.end();
  if (reading == VdirReading::gone) return forget(entry.first);
  return parse(entry, reading == VdirReading::read ? bytes : std::string_view(), horizon, looks);
}

bool VdirFolder::parse(VdirFiles::value_type& entry, std::string_view text,
                       const VdirHorizon& horizon, const DiskLooks& looks) {
  const bool isOther = noteCollection(entry, text);
  auto& next = entry.second.nextStart;
  const auto glance = glanceNextStart(text, horizon.since());
  if (glance && !horizon.mayHold(*glance)) {
    next = *glance;
    return show(entry.first, {}) || isOther;
  }
  const auto isEnding = [&looks] { return looks.isStopped(); };
  const auto calendar = IcalendarText::parse(text, isEnding);
  next = calendar.nextStart(horizon.since(), horizon.zone, isEnding).value_or(VdirFile::never);
  if (!horizon.mayHold(next)) return show(entry.first, {}) || isOther;
  return show(entry.first,
              calendar.occurrences(horizon.from, horizon.to, horizon.zone, isEnding)) ||
         isOther;
}

bool VdirFolder::show(const std::string& name, std::vector<Event> events) {
  const auto shown = events_.find(name);
  if (shown == events_.end() ? events.empty() : areEqual(shown->second, events)) return false;
  Events shared;
  for (auto& event : events) shared.push_back(std::make_shared<const Event>(std::move(event)));
  if (shared.empty()) return events_.erase(name) > 0;
  events_.insert_or_assign(name, std::move(shared));
  return true;
}

bool VdirFolder::noteCollection(VdirFiles::value_type& entry, std::string_view text) {
  // Below a root, a file with many events is part of its folder like any other.
  const bool isSingle = !where_.file.empty();
  auto title = isSingle || where_.path == where_.root ? collectionTitle(text) : std::nullopt;
  if (isSingle && !title) title.emplace();
  entry.second.isCollection = title.has_value();
  if (!title) return collections_.erase(entry.first) > 0;
  const auto [known, isNew] = collections_.try_emplace(entry.first);
  return std::exchange(known->second, *title) != *title || isNew;
}

bool VdirFolder::forget(const std::string& name) {
  const bool wasShown = events_.erase(name) > 0;
  const bool wasCollection = collections_.erase(name) > 0;
  const bool wasCalendar = isCalendar();
  // `name` may be the table's own.
  files_.erase(files_.find(name));
  return wasShown || wasCollection || wasCalendar != isCalendar();
}

bool VdirFolder::readAppearance(DiskLooks& looks) {
  if (!where_.file.empty()) return false;
  looks.begin(where_.path);
  const auto name = readWholeFile(where_.path / "displayname", maximumAppearanceSize);
  const auto color = readWholeFile(where_.path / "color", maximumAppearanceSize);
  looks.end();
  using enum FileContent::Status;
  const bool hadAppearance =
      std::exchange(hasAppearance_, name.status == read || color.status == read);
  const auto oldTitle = std::exchange(title_, trimmed(name.bytes));
  const auto oldColor = std::exchange(color_, parseColor(trimmed(color.bytes)));
  return hadAppearance != hasAppearance_ || oldTitle != title_ || oldColor != color_;
}

}  // namespace valdrix::desktop
