#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "desktop/icalendar/IcalendarText.h"

/// Reads any bytes as calendars and asks them what the program asks. What must hold of the answers
/// is checked here; what must hold of memory, by the sanitizers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace valdrix;
  using namespace std::chrono_literals;
  static const QTimeZone local("Europe/Paris");
  constexpr platform::Instant now = std::chrono::sys_days(std::chrono::year(2026) / 3 / 27);
  constexpr platform::Instant end = now + 7 * 24h;

  // Bytes that come from outside have no other type.
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto calendar = desktop::IcalendarText::parse(text);
  const auto next = calendar.nextStart(now, local);
  const auto events = calendar.occurrences(now, end, local);
  for (const platform::Event& event : events) {
    const bool isMoment = event.startDate == event.endDate;
    const bool overlaps =
        event.startDate < end && event.endDate >= now && (isMoment || event.endDate > now);
    if (event.endDate < event.startDate || !overlaps || !next || *next > event.startDate)
      std::abort();
  }
  if (calendar.isEmpty() && !events.empty()) std::abort();
  return 0;
}
