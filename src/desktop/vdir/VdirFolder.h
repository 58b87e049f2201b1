#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/session/UniqueFd.h"
#include "desktop/vdir/CalendarFolders.h"
#include "desktop/vdir/DiskLooks.h"
#include "desktop/vdir/VdirFile.h"
#include "desktop/vdir/VdirHorizon.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// One folder of event files: what is known of each, which of them are still to be read, and what
/// those read hold of the time that is wanted. Reads the disk, so never on the main thread.
class VdirFolder {
 public:
  /// The occurrences of one file, without a calendar.
  using Events = std::vector<std::shared_ptr<const platform::Event>>;

  /// `known` is what was known of its files before; only those that changed since are read.
  explicit VdirFolder(CalendarFolder where, VdirFiles known = {});

  [[nodiscard]] const CalendarFolder& where() const { return where_; }
  void setWhere(CalendarFolder where) { where_ = std::move(where); }
  [[nodiscard]] const VdirFiles& files() const { return files_; }

  /// Finds out which files came, changed or went, and queues them, those that changed last first.
  /// Ends early when `looks` are stopped.
  void scan(DiskLooks& looks);
  /// Queues what `horizon` needs, or everything.
  void queueFor(const VdirHorizon& horizon);
  void queueAll();
  /// Queues one file that may have come, changed or gone.
  void queue(std::string_view name);
  [[nodiscard]] bool hasQueue() const { return !queue_.empty(); }
  /// Reads the next file of the queue. Whether what this folder holds is another now. Once
  /// `looks` are stopped, what is known of that file is of no use any more.
  bool readNext(const VdirHorizon& horizon, DiskLooks& looks);
  /// Reads the calendar's name and colour. Whether they changed.
  bool readAppearance(DiskLooks& looks);
  /// Whether a file of this name, when it comes or goes, changes what this folder holds.
  [[nodiscard]] bool holds(std::string_view name) const;

  /// Whether it is a calendar, and not only a place of some.
  [[nodiscard]] bool isCalendar() const;
  /// The calendar's own name and colour, where it has them.
  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::optional<view::Color>& color() const { return color_; }
  /// Files that are calendars of their own, with their titles, which may be empty.
  [[nodiscard]] const std::map<std::string, std::string>& collections() const {
    return collections_;
  }
  /// What its files hold, by name; of those that hold something.
  [[nodiscard]] const std::map<std::string, Events>& events() const { return events_; }

 private:
  void queue(VdirFiles::value_type& entry);
  void scanFile(int folder, const char* name);
  bool parse(VdirFiles::value_type& entry, std::string_view text, const VdirHorizon& horizon,
             const DiskLooks& looks);
  bool show(const std::string& name, std::vector<platform::Event> events);
  bool noteCollection(VdirFiles::value_type& entry, std::string_view text);
  bool forget(const std::string& name);
  [[nodiscard]] int directory();

  CalendarFolder where_;
  VdirFiles files_;
  std::vector<VdirFiles::value_type*> queue_;  ///< the next one last
  std::map<std::string, Events> events_;
  std::map<std::string, std::string> collections_;
  std::string title_;
  std::optional<view::Color> color_;
  bool hasAppearance_ = false;
  UniqueFd directory_;  ///< open only while there is a queue, not to keep a disk from going
};

}  // namespace valdrix::desktop
