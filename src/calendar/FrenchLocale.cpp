#include "calendar/FrenchLocale.h"

#include <array>

namespace valdrix {

namespace {

constexpr std::array<std::string_view, 7> weekdays{"lundi",    "mardi",  "mercredi", "jeudi",
                                                   "vendredi", "samedi", "dimanche"};
constexpr std::array<std::string_view, 12> months{"janvier",   "février", "mars",     "avril",
                                                  "mai",       "juin",    "juillet",  "août",
                                                  "septembre", "octobre", "novembre", "décembre"};

/// A number below 100.
std::string twoDigits(unsigned number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

}  // namespace

std::string FrenchLocale::dayText(const platform::DateFields& fields) const {
  return std::string(weekdays.at(fields.weekday)) + ' ' + std::to_string(fields.day) + ' ' +
         std::string(months.at(fields.month - 1));
}

std::string FrenchLocale::timeText(const platform::DateFields& fields) const {
  return twoDigits(fields.hour) + ':' + twoDigits(fields.minute);
}

}  // namespace valdrix
