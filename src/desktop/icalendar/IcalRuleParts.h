#pragma once

#include <cstddef>
#include <cstdlib>
#include <libical/ical.h>
#include <span>

namespace valdrix::desktop {

/// The values of one BY part of a rule, none when it is not there.
template <std::size_t size>
[[nodiscard]] std::span<const short> parts(const short (&list)[size]) {
  std::size_t count = 0;
  while (count < size && list[count] != ICAL_RECURRENCE_ARRAY_MAX) ++count;
  return {list, count};
}

/// The weekday of a BYDAY value, 0 for Sunday.
[[nodiscard]] inline unsigned weekdayOf(short day) {
  return static_cast<unsigned>(icalrecurrencetype_day_day_of_week(day)) - 1;
}
/// Which one of its month or year a BYDAY value means, negative from the end; 0 for all.
[[nodiscard]] inline int ordinalOf(short day) { return icalrecurrencetype_day_position(day); }

}  // namespace valdrix::desktop
