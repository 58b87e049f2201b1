#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QDateTime>

#include "desktop/icalendar/IcalHandles.h"
#include "desktop/icalendar/IcalendarText.h"
#include "desktop/icalendar/RecurrenceRule.h"

namespace {

using namespace valdrix;
using namespace std::chrono_literals;
using desktop::IcalendarText;
using desktop::WallTime;
using platform::Instant;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

const QTimeZone paris("Europe/Paris");
const QTimeZone newYork("America/New_York");

Instant instant(const std::string& text, const QTimeZone& zone) {
  const auto dateTime = QDateTime::fromString(QString::fromStdString(text), "yyyyMMdd'T'HHmmss");
  return Instant(std::chrono::milliseconds(
      QDateTime(dateTime.date(), dateTime.time(), zone).toMSecsSinceEpoch()));
}

std::string shown(Instant instant, const QTimeZone& zone, const char* format) {
  const auto there = QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), zone);
  return there.toString(format).toStdString();
}

std::string shown(const platform::Event& event) {
  const QTimeZone& zone = event.isAllDay ? paris : QTimeZone::utc();
  const char* format = event.isAllDay ? "yyyyMMdd" : "yyyyMMdd'T'HHmm";
  std::string title = event.title.value_or("-");
  std::ranges::replace(title, '\n', '|');
  return shown(event.startDate, zone, format) + " " + shown(event.endDate, zone, format) +
         (event.hasRecurrenceRules ? " R " : " ") + title;
}

std::vector<std::string> linesOf(const std::string& file) {
  std::ifstream stream(std::string(CALENDAR_DATA) + "/" + file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    if (!line.starts_with("#")) lines.push_back(line);
  return lines;
}

/// "1997 Sep 2,4-6; Oct 1@0900" as times.
std::vector<std::string> listed(const QString& list) {
  std::vector<std::string> times;
  QString year;
  for (QString part : list.split("; ")) {
    if (part.front().isDigit()) {
      year = part.left(4);
      part.remove(0, 5);
    }
    const auto month = QDate::fromString(year + part.left(3) + "1", "yyyyMMMd");
    const auto days = part.mid(4).section('@', 0, 0).split(',');
    const auto hours = part.contains('@') ? part.section('@', 1).split(',') : QStringList("0900");
    for (const QString& range : days)
      for (int day = range.section('-', 0, 0).toInt(); day <= range.section('-', -1).toInt(); ++day)
        for (const QString& hour : hours)
          times.push_back(month.addDays(day - 1).toString("yyyyMMdd'T'").toStdString() +
                          hour.toStdString() + "00");
  }
  return times;
}

TEST(IcalendarTextTest, GivesTheOccurrencesThatTheStandardLists) {
  for (const std::string& line : linesOf("rfc5545.txt")) {
    SCOPED_TRACE(line);
    const auto fields = QString::fromStdString(line).split(" | ");
    const bool goesOn = fields[2].endsWith(" ...");
    const auto expected = listed(goesOn ? fields[2].chopped(4) : fields[2]);
    const auto text = "BEGIN:VEVENT\nDTSTART;TZID=America/New_York:" + fields[0] + "T090000\n" +
                      QString(fields[1]).replace(' ', '\n');
    const Instant end =
        goesOn ? instant(expected.back(), newYork) + 1s : instant("20100101T000000", newYork);
    std::vector<std::string> starts;
    const auto calendar = IcalendarText::parse(text.toStdString());
    for (const auto& event : calendar.occurrences(instant("19960101T000000", newYork), end, paris))
      starts.push_back(shown(event.startDate, newYork, "yyyyMMdd'T'HHmmss"));
    std::ranges::sort(starts);
    EXPECT_THAT(starts, ElementsAreArray(expected));
  }
}

struct OddCase {
  std::string name{};
  std::string start = "20260101T000000";
  std::string end = "20270101T000000";
  std::string text{};
  std::vector<std::string> expected{};
};

std::string unescaped(const std::string& line) {
  std::string result;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line.compare(at, 2, "\\r") == 0) {
      result += '\r';
      ++at;
    } else if (line.compare(at, 2, "\\x") == 0) {
      result += static_cast<char>(std::stoi(line.substr(at + 2, 2), nullptr, 16));
      at += 3;
    } else {
      result += line[at];
    }
  }
  return result;
}

std::vector<OddCase> oddCases() {
  std::vector<OddCase> cases;
  for (const std::string& line : linesOf("odd.txt")) {
    if (line.starts_with("= ")) {
      cases.push_back({.name = line.substr(2)});
    } else if (line.starts_with("> ")) {
      cases.back().expected.push_back(line.substr(2));
    } else if (std::isdigit(line.front())) {
      cases.back().start = line.substr(0, 15);
      cases.back().end = line.substr(16);
    } else {
      const bool needsFrame = cases.back().text.empty() && line.find("BEGIN:") == std::string::npos;
      cases.back().text += (needsFrame ? "BEGIN:VEVENT\n" : "") + unescaped(line) + "\n";
    }
  }
  return cases;
}

TEST(IcalendarTextTest, ReadsOddTexts) {
  for (const OddCase& odd : oddCases()) {
    SCOPED_TRACE(odd.name);
    const auto calendar = IcalendarText::parse(odd.text);
    const Instant start = instant(odd.start, paris);
    auto events = calendar.occurrences(start, instant(odd.end, paris), paris);
    std::ranges::stable_sort(events, {}, &platform::Event::startDate);
    std::vector<std::string> lines;
    for (const auto& event : events) lines.push_back(shown(event));
    EXPECT_THAT(lines, testing::UnorderedElementsAreArray(odd.expected));
    const auto next = calendar.nextStart(start, paris);
    ASSERT_EQ(next.has_value(), !events.empty());
    if (odd.text.find("THISANDFUTURE") == std::string::npos) {
      EXPECT_EQ(*next, events.front().startDate);
    } else {
      EXPECT_LE(*next, events.front().startDate);
    }
  }
}

TEST(IcalendarTextTest, NamesTheNextStartOfWhatIsCostlyOrFarAtOnceOrEarlier) {
  const Instant now = instant("20261123T120000", paris);
  struct {
    const char* event;
    std::optional<const char*> earliest, latest;
  } const rows[]{
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=DAILY", "20261124T110000", "20261124T110000"},
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=DAILY;COUNT=100", {}, {}},
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=DAILY;UNTIL=20200101", {}, {}},
      {"DTSTART:20200229T100000Z\nRRULE:FREQ=YEARLY", "20280229T110000", "20280229T110000"},
      {"DTSTART:19961105T100000Z\nRRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=TU;INTERVAL=4;BYMONTHDAY=2,3,"
       "4,5,6,7,8",
       "20270101T000000", "20281107T110000"},
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30", "20270101T000000", {}},
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30",
       "20270101T000000",
       {}},
      {"DTSTART:19700101T100000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000", "20261123T120000",
       "20261123T120000"},
      {"DTSTART:20261101\nDTEND:20261130", "20261101T000000", "20261101T000000"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.event);
    const auto calendar = IcalendarText::parse("BEGIN:VEVENT\n" + std::string(row.event));
    const auto next = calendar.nextStart(now, paris);
    ASSERT_EQ(next.has_value(), row.earliest.has_value());
    if (!next) continue;
    EXPECT_GE(*next, instant(*row.earliest, paris));
    EXPECT_LE(*next, row.latest ? instant(*row.latest, paris) : Instant::max());
  }
}

TEST(IcalendarTextTest, BoundsHostileTexts) {
  const Instant now = instant("20261123T120000", paris);
  std::string nested;
  for (int depth = 0; depth < 200'000; ++depth) nested += "BEGIN:VCALENDAR\nBEGIN:X\n";
  std::string many;
  for (int number = 0; number < 2'000; ++number)
    many += "BEGIN:VEVENT\nDTSTART:19700101T000000Z\nDURATION:P9000W\nRRULE:FREQ=SECONDLY\n";
  const std::string title =
      "BEGIN:VEVENT\nDTSTART:20261123T130000Z\nSUMMARY:" + std::string(100'000, 'x');
  std::string names;
  for (int number = 0; number < 2'000; ++number)
    names +=
        "BEGIN:VEVENT\nDTSTART;TZID=/" + std::to_string(number) + "/Asia/Tokyo:20261123T130000\n";
  EXPECT_TRUE(IcalendarText::parse(nested).isEmpty());
  EXPECT_LE(IcalendarText::parse(many).occurrences(now, now + 24h, paris).size(), 100'000U);
  EXPECT_LE(IcalendarText::parse(title).occurrences(now, now + 24h, paris).at(0).title->size(),
            4096U);
  EXPECT_THAT(IcalendarText::parse(names).occurrences(now - 24h, now, paris), SizeIs(1000));
  EXPECT_THAT(IcalendarText::parse(title).occurrences(Instant::max(), Instant::min(), paris),
              IsEmpty());
}

TEST(IcalendarTextTest, EndsWhenNobodyWaitsAnyMore) {
  const Instant now = instant("20261123T120000", paris);
  std::string events, dates = "BEGIN:VEVENT\nDTSTART:20261123T130000Z\nEXDATE:";
  for (int number = 0; number < 10'000; ++number)
    events += "BEGIN:VEVENT\nDTSTART:19700101T000000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000\n";
  for (int number = 0; number < 100'000; ++number) dates += "20261123,";
  int questions = 0;
  const auto isEnding = [&] { return ++questions == 3; };
  const auto calendar = IcalendarText::parse(events);
  (void)calendar.nextStart(now, paris, isEnding);
  EXPECT_EQ(std::exchange(questions, 0), 3);
  EXPECT_THAT(calendar.occurrences(now, now + 24h, paris, isEnding), SizeIs(testing::Lt(10U)));
  EXPECT_EQ(std::exchange(questions, 0), 3);
  EXPECT_THAT(IcalendarText::parse(events, isEnding).occurrences(now, now + 24h, paris), IsEmpty());
  EXPECT_EQ(std::exchange(questions, 0), 3);
  (void)IcalendarText::parse(dates, isEnding);
  EXPECT_EQ(questions, 3);
}

/// Rules that are followed without libical must agree with it.
TEST(RecurrenceRuleTest, AgreesWithLibicalOnPlainRules) {
  constexpr std::string_view weekdays[]{"MO", "TU", "WE", "TH", "FR", "SA", "SU"};
  std::mt19937 random(20261123);
  const auto upTo = [&](int last) {
    return static_cast<int>(random() % static_cast<unsigned>(last)) + 1;
  };
  const auto weekday = [&] { return std::string(weekdays[upTo(7) - 1]); };
  const auto signedUpTo = [&](int last) {
    return std::to_string(upTo(2) == 1 ? -upTo(last) : upTo(last));
  };
  for (int round = 0; round < 1'500; ++round) {
    const std::string shapes[]{
        "DAILY",
        "WEEKLY",
        "WEEKLY;BYDAY=" + weekday(),
        "MONTHLY",
        "MONTHLY;BYMONTHDAY=" + signedUpTo(31),
        "MONTHLY;BYDAY=" + signedUpTo(5) + weekday(),
        "YEARLY",
        "YEARLY;BYMONTH=" + std::to_string(upTo(12)),
        "YEARLY;BYMONTH=" + std::to_string(upTo(12)) + ";BYMONTHDAY=" + signedUpTo(31),
        "YEARLY;BYMONTH=" + std::to_string(upTo(12)) + ";BYDAY=" + signedUpTo(5) + weekday()};
    std::string text = "FREQ=" + shapes[upTo(10) - 1];
    // libical counts weeks from the wrong one when the start's weekday is not in BYDAY.
    if (upTo(2) == 1 && !text.starts_with("FREQ=WEEKLY;BYDAY"))
      text += ";INTERVAL=" + std::to_string(upTo(9));
    SCOPED_TRACE(text);
    const auto rule = desktop::RecurrenceRule::parse(text);
    ASSERT_TRUE(rule && rule->isCheap());
    const WallTime start = WallTime(std::chrono::sys_days(2020y / 1 / 1).time_since_epoch()) +
                           std::chrono::days(upTo(400)) + 9h;
    const WallTime from = start + std::chrono::days(upTo(900) - 100);

    std::vector<WallTime> ours;
    desktop::WorkBudget budget(1'000'000);
    rule->walk(start, false, *desktop::CalendarZone::utc(),
               {.from = from, .to = from + std::chrono::days(3000)}, budget, [&](WallTime time) {
                 ours.push_back(time);
                 return ours.size() < 12;
               });

    std::vector<WallTime> theirs;
    if (from <= start) theirs.push_back(start);
    const desktop::IcalIterator iterator(icalrecur_iterator_new(
        icalrecurrencetype_from_string(text.c_str()),
        icaltime_from_timet_with_zone(start.time_since_epoch().count(), 0, nullptr)));
    for (int step = 0; step < 1000 && iterator && theirs.size() < ours.size(); ++step) {
      const WallTime time(
          std::chrono::seconds(icaltime_as_timet(icalrecur_iterator_next(iterator.get()))));
      if (time > start && time >= from) theirs.push_back(time);
    }
    EXPECT_EQ(ours, theirs);
  }
}

}  // namespace
