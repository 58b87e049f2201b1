#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace valdrix::bench {

/// A folder of made-up events, one a file, a third of them recurring; the same for the same size.
/// However many there are, the week from today on holds the same few: all others lie decades
/// around it, and their rules end.
class EventFolder {
 public:
  static constexpr std::size_t eventsOfWeek = 40;

  /// Writes `size` files into `folder`, which must not exist.
  EventFolder(std::filesystem::path folder, std::size_t size);

  /// Replaces one of the week's events by one of another title, as calendar programs do.
  void change(const std::string& title) const { replace("week-0.ics", title); }
  /// Adds one more event of this week.
  void add(const std::string& title) const { replace("added.ics", title); }

 private:
  void writeOfWeek(std::size_t number) const;
  void writeOther(std::size_t number) const;
  void replace(const std::string& name, const std::string& title) const;

  std::filesystem::path folder_;
};

}  // namespace valdrix::bench
