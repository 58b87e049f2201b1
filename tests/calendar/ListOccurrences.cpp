#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <QDateTime>

#include "desktop/icalendar/IcalendarText.h"

// list_occurrences FOLDER FIRST-DAY LAST-DAY: a line for each occurrence in the files of a folder,
// in the system's time zone: title, start and end, the last day for all-day events.

namespace {

using namespace valdrix;

platform::Instant midnight(const QDate& date) {
  return platform::Instant(std::chrono::milliseconds(date.startOfDay().toMSecsSinceEpoch()));
}

std::string shown(platform::Instant instant, bool isAllDay) {
  const auto there = QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count());
  return there.toString(isAllDay ? "yyyy-MM-dd" : "yyyy-MM-dd HH:mm").toStdString();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return EXIT_FAILURE;
  const auto start = midnight(QDate::fromString(arguments[2], Qt::ISODate));
  const auto end = midnight(QDate::fromString(arguments[3], Qt::ISODate).addDays(1));
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const auto calendar = desktop::IcalendarText::parse(text);
    for (const auto& event : calendar.occurrences(start, end, QTimeZone::systemTimeZone())) {
      const auto last = event.isAllDay ? event.endDate - std::chrono::hours(1) : event.endDate;
      std::cout << event.title.value_or("") << "|" << shown(event.startDate, event.isAllDay) << "|"
                << shown(last, event.isAllDay) << "\n";
    }
  }
  return EXIT_SUCCESS;
}
