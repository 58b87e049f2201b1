#include "bench/calendar/EventFolder.h"

#include <algorithm>
#include <fstream>
#include <random>

#include <QDateTime>
#include <QTimeZone>

namespace valdrix::bench {
namespace {

std::string localTime(const QDateTime& time) {
  return time.toString(QStringLiteral("yyyyMMdd'T'HHmmss")).toStdString();
}

std::string eventText(const std::string& uid, const std::string& title, const QDateTime& start,
                      const std::string& rule) {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\nBEGIN:VEVENT\r\nUID:" + uid +
         "\r\nDTSTAMP:20200101T000000Z\r\nCREATED:20200101T000000Z\r\nSUMMARY:" + title +
         "\r\nDTSTART;TZID=Europe/Paris:" + localTime(start) +
         "\r\nDTEND;TZID=Europe/Paris:" + localTime(start.addSecs(3600)) + "\r\n" + rule +
         "LOCATION:Salle 12\\, 3e étage\r\nDESCRIPTION:Ordre du jour : bilan du mois\\, questions "
         "diverses\\nà\r\n  préparer avant la réunion\r\nSTATUS:CONFIRMED\r\nTRANSP:OPAQUE\r\n"
         "SEQUENCE:1\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

QDateTime inParis(const QDate& date, int hour) {
  return {date, QTime(hour, 0), QTimeZone("Europe/Paris")};
}

std::string someRule(std::size_t number) {
  const auto count = std::to_string(2 + number % 30);
  switch (number / 3 % 3) {
    case 0:
      return "RRULE:FREQ=DAILY;COUNT=" + count + "\r\n";
    case 1:
      return "RRULE:FREQ=WEEKLY;BYDAY=MO,TH;COUNT=" + count + "\r\n";
    default:
      return "RRULE:FREQ=MONTHLY;COUNT=" + count + "\r\n";
  }
}

void write(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

}  // namespace

EventFolder::EventFolder(std::filesystem::path folder, std::size_t size)
    : folder_(std::move(folder)) {
  std::filesystem::create_directories(folder_);
  // Those of the week lie among the others, in the order of writing too.
  const auto distance = std::max<std::size_t>(size / eventsOfWeek, 1);
  for (std::size_t i = 0; i < size; ++i)
    if (i % distance == 0 && i / distance < eventsOfWeek) {
      writeOfWeek(i / distance);
    } else {
      writeOther(i);
    }
}

void EventFolder::writeOfWeek(std::size_t number) const {
  const auto name = "week-" + std::to_string(number);
  const bool isRecurring = number % 3 == 0;
  const QDate day =
      QDate::currentDate().addDays(1 + static_cast<int>(number % 6) - (isRecurring ? 700 : 0));
  write(folder_ / (name + ".ics"),
        eventText(name, "Réunion " + name, inParis(day, 8 + static_cast<int>(number % 10)),
                  isRecurring ? "RRULE:FREQ=WEEKLY\r\n" : ""));
}

void EventFolder::writeOther(std::size_t number) const {
  std::mt19937 random(static_cast<std::mt19937::result_type>(number));
  std::uniform_int_distribution<int> distance(60, 365 * 15);
  // Rules end within three years, so those of the past must begin before that.
  const bool isPast = random() % 2 == 0;
  const int days = isPast ? -distance(random) - 365 * 3 : distance(random);
  const auto uid = "7d1f3c52-0a4e-4c6b-9d38-" + std::to_string(100000000000 + number);
  write(folder_ / (uid + ".ics"),
        eventText(uid, "Rendez-vous " + std::to_string(number),
                  inParis(QDate::currentDate().addDays(days), 8 + static_cast<int>(number % 10)),
                  number % 3 == 0 ? someRule(number) : ""));
}

void EventFolder::replace(const std::string& name, const std::string& title) const {
  const auto temporary = folder_ / ".new";
  write(temporary, eventText(name, title, inParis(QDate::currentDate().addDays(2), 9), ""));
  std::filesystem::rename(temporary, folder_ / name);
}

}  // namespace valdrix::bench
