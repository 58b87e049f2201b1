// Calendars in real folders: where they are found, what is shown, and what follows when they
// change.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdarg>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <QDateTime>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "desktop/icalendar/IcalendarText.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/WholeFile.h"
#include "desktop/vdir/CalendarFolders.h"
#include "desktop/vdir/CalendarPlaces.h"
#include "desktop/vdir/NextStartGlance.h"
#include "desktop/vdir/SlowMounts.h"
#include "desktop/vdir/VdirIndex.h"
#include "desktop/vdir/VdirSnapshot.h"
#include "desktop/vdir/VdirSource.h"
#include "tests/support/Unprivileged.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;

using std::chrono::hours;
using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

std::string utc(platform::Instant instant) {
  return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), Qt::UTC)
      .toString("yyyyMMdd'T'HHmmss'Z'")
      .toStdString();
}

/// Where opening anything takes until it is cleared, as on a share whose server has gone.
std::atomic<const char*> deadName = nullptr;

/// A user's home, with the loop and the clock of a process that looks at its calendars.
class VdirTest : public testing::Test {
 protected:
  VdirTest() {
    fs::permissions(home, fs::perms::all);
    paths.places = {"~/data"};
    paths.settings = home / "calendars.conf";
    paths.khal = {home / "khal"};
    paths.vdirsyncer = {home / "vdirsyncer"};
    paths.index = home / "cache/valdrix/index";
    paths.environment = {{"HOME", home.string()}, {"WORK", "work"}};
  }

  static std::string event(const std::string& title, hours from = hours(1)) {
    const auto start = std::chrono::floor<hours>(std::chrono::system_clock::now()) + from;
    return "BEGIN:VEVENT\r\nUID:" + title + "\r\nSUMMARY:" + title + "\r\nDTSTART:" + utc(start) +
           "\r\nDTEND:" + utc(start + hours(1)) + "\r\nEND:VEVENT\r\n";
  }
  static std::string calendar(const std::string& content) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + content + "END:VCALENDAR\r\n";
  }
  void write(const fs::path& file, const std::string& text) const {
    fs::create_directories((home / file).parent_path());
    std::ofstream(home / file) << text;
  }
  void add(const fs::path& file, const std::string& title, hours from = hours(1)) const {
    write(file, calendar(event(title, from)));
  }
  void replace(const fs::path& file, const std::string& title) const {
    add(file.parent_path() / ".new", title);
    fs::rename(home / file.parent_path() / ".new", home / file);
  }

  void start() {
    source.emplace(runLoop, clock, paths);
    token = source->observeChanges([this] { ++notices; });
    source->start();
  }
  [[nodiscard]] Strings identifiers() const {
    Strings names;
    for (const auto& each : source->calendars()) names.push_back(each.calendarIdentifier);
    return names;
  }
  /// What is shown of the time `ahead` hours from now, and the days after it.
  [[nodiscard]] Strings titles(hours ahead = hours(0), hours length = hours(48)) const {
    Strings found;
    const auto from = clock.now() + ahead;
    for (const auto& each : source->events(from, from + length, identifiers()))
      found.push_back(each.title.value_or("-"));
    std::ranges::sort(found);
    return found;
  }
  /// Whether that comes to be shown.
  [[nodiscard]] bool shows(const Strings& expected) const {
    const bool isShown = tests::waitFor([&] { return titles() == expected; });
    EXPECT_EQ(titles(), expected);
    return isShown;
  }
  [[nodiscard]] Strings found() const {
    Strings folders;
    for (const auto& each : findCalendarFolders(paths))
      folders.push_back(fs::relative(each.path / each.file, home).string());
    return folders;
  }

  QTemporaryDir temporary;
  fs::path home{temporary.path().toStdString()};
  VdirPaths paths;
  QtRunLoop runLoop;
  QtUserCalendar clock;
  int notices = 0;
  std::optional<VdirSource> source;
  Token token;
};

TEST(CalendarPlaces, AreReadFromWhatUsersAndOtherProgramsWrote) {
  EXPECT_THAT(placesInSettings("\xEF\xBB\xBF# mine\r\n  ~/a b \r\n\n/c#d"),
              ElementsAre("~/a b", "/c#d"));
  EXPECT_THAT(placesInKhal("[calendars]\n"
                           "  [[one]]\n  path = ~/one/ # mine\n"
                           "  [[two]]\n  path = \"~/t#o/*\"\n  type = discover\n"
                           "  [[born]]\n  path = ~/contacts\n  type = birthdays\n"
                           "  [[none]]\n  color = red\nnonsense\n[[broken\n"
                           "[sqlite]\npath = ~/khal.db\n[[x]]\npath = /no"),
              ElementsAre("~/one/", "~/t#o/*"));
  EXPECT_THAT(placesInVdirsyncer("[general]\nstatus_path = \"~/status\"\n"
                                 "[storage a]\ntype = \"filesystem\"\npath = \"~/\\u00e9/\"\n"
                                 "fileext = \".ics\"\n"
                                 "[storage b]\ntype = \"filesystem\"\npath = \"~/contacts\"\n"
                                 "fileext = \".vcf\"\n"
                                 "[storage c]\ntype = \"caldav\"\npath = \"/no\"\n"
                                 "[storage d]\ntype = \"singlefile\"\npath = \"~/%s.ics\"\n"
                                 "[storage e]\ntype = \"filesystem\"\npath = unquoted\n"),
              ElementsAre("~/é/", "~/*.ics"));
  const std::map<std::string, std::string> environment{{"HOME", "/h"}, {"A_1", "x"}};
  for (const auto& [place, expanded] :
       std::vector<std::pair<std::string, std::string>>{{"~", "/h"},
                                                        {"~/c", "/h/c"},
                                                        {"~other/c", "~other/c"},
                                                        {"/$A_1/${A_1}y$", "/x/xy$"},
                                                        {"/$B/${A_1", "/$B/${A_1"}})
    EXPECT_EQ(expandPlace(place, environment), expanded);
}

TEST(NextStartGlance, SaysNothingThatTheParserWouldNot) {
  const platform::Instant since = std::chrono::sys_days(std::chrono::January / 1 / 2026);
  enum { over, ahead, unknown };
  for (const auto& [lines, expected] : std::vector<std::pair<std::string, int>>{
           {"DTSTART:20250101T100000Z\r\nDTEND:20250101T110000Z", over},
           {"DTSTART;VALUE=DATE:20270101", ahead},
           {"DTSTART:20250101T100000Z\r\nDTEND:20270101T110000Z", ahead},
           {"DTSTART:20251231T100000Z", ahead},
           {"DTSTART:20250101T100000Z\r\nDURATION:P800D", unknown},
           {"DTSTART:20250101T100000Z\r\nRRULE:FREQ=DAILY;UNTIL=20250201T000000Z", over},
           {"DTSTART:20250101T100000Z\r\nRRULE:FREQ=DAILY;COUNT=800", unknown},
           {"DTSTART:20250101T100000Z\r\nrrule:FREQ=YEARLY", unknown},
           {"DTSTART:20270101T100000Z\r\nRRULE:FREQ=DAILY;UNTIL=20240101", ahead},
           {"DTSTART:20270101T100000Z\r\nRRULE:FREQ=WEEKLY", ahead},
           {"DTSTART:20270101T100000Z\r\nRDATE:20260201T100000Z", unknown},
           {"DTSTART:20250101T100000Z\r\nRRULE:FREQ=DAILY;UNTIL=2025\r\n 1231T000000Z", unknown},
           {"DTSTART:20250101T100000Z\r\nBEGIN:VALARM\r\nDURATION:PT1H\r\nEND:VALARM", over},
           {"DTSTART:20250101T100000Z\r\nBEGIN:VALARM", unknown},
           {"DTSTART:20251301T100000Z", unknown},
           {"SUMMARY:no start", unknown}}) {
    SCOPED_TRACE(lines);
    const auto text = "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:1\r\n" + lines +
                      "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    const auto glance = glanceNextStart(text, since);
    const auto exact = IcalendarText::parse(text).nextStart(since, QTimeZone("Pacific/Kiritimati"));
    EXPECT_EQ(glance ? *glance == VdirFile::never ? over : ahead : unknown, expected);
    if (glance) {
      EXPECT_LE(*glance, exact.value_or(VdirFile::never));
    }
  }
}

TEST(VdirSnapshot, HoldsWhatIsNearestToTodayOfTooMuch) {
  const platform::Instant today = std::chrono::sys_days(std::chrono::January / 1 / 2026);
  constexpr int limit = VdirSnapshot::maximumSize;
  for (const auto& [first, last, firstHeld, lastHeld] :
       std::vector<std::array<int, 4>>{{-10, limit - 10, -10, limit - 10},
                                       {-limit, limit * 2, 0, limit},
                                       {-limit, limit / 4, limit / 4 - limit, limit / 4}}) {
    std::vector<VdirSnapshot::Occurrence> occurrences;
    for (int hour = last - 1; hour >= first; --hour) {
      const auto start = today + hours(hour);
      occurrences.push_back({std::make_shared<const platform::Event>(
                                 platform::Event{.startDate = start, .endDate = start + hours(1)}),
                             0});
    }
    const VdirSnapshot snapshot({{.calendarIdentifier = "c", .title = "c"}}, occurrences, today);
    const auto events = snapshot.events(platform::Instant::min(), platform::Instant::max(), {"c"});
    ASSERT_EQ(events.size(), static_cast<std::size_t>(lastHeld - firstHeld));
    EXPECT_EQ(events.front().startDate, today + hours(firstHeld));
    EXPECT_EQ(events.back().startDate, today + hours(lastHeld - 1));
  }
}

TEST_F(VdirTest, FindsEachFolderOnceWhateverLeadsThere) {
  for (const auto* folder :
       {"data/b", "data/a", "data/.hidden", "k/work/one", "k/work/two", "k/other/two", "sync/[x]"})
    fs::create_directories(home / folder);
  fs::create_directory_symlink(home / "data/a", home / "data/z");
  fs::create_directory_symlink("loop", home / "data/loop");
  fs::create_directory_symlink("..", home / "data/up");
  add("single/only.ics", "only");
  add("single/other.ics", "other");
  add("data/in.ics", "in");
  write("calendars.conf", "~/data/../data/\nrelative\n~/single/only.ics\n~/data/in.ics\n/nowhere");
  write("khal", "[calendars]\n[[x]]\npath = ~/k/$WORK/[!o]*\ntype = discover\n");
  write("vdirsyncer", "[storage x]\ntype=\"filesystem\"\npath=\"~/sync\"\n");
  EXPECT_THAT(found(), ElementsAre("data", "data/a", "data/b", ".", "k/work/two", "sync",
                                   "sync/[x]", "single/only.ics"));
}

TEST_F(VdirTest, TellsByPermissionsAloneWhatCanBeReached) {
  using enum CalendarSource::Reach;
  const auto reach = [&] {
    const tests::Unprivileged user;
    return VdirSource(runLoop, clock, paths).reach();
  };
  EXPECT_EQ(reach(), absent);
  fs::create_directories(home / "data/empty");
  EXPECT_EQ(reach(), absent);
  add("data/a/1.ics", "one");
  EXPECT_EQ(reach(), readable);
  ::chmod((home / "data/a").c_str(), 0);
  EXPECT_EQ(reach(), closed);
  ::chmod((home / "data/a").c_str(), 0333);
  EXPECT_EQ(reach(), writeOnly);
  fs::remove_all(home / "data/a");
  // What is closed beside calendars is none.
  fs::create_directories(home / "disk/lost+found");
  ::chmod((home / "disk/lost+found").c_str(), 0);
  write("calendars.conf", "~/disk\n");
  EXPECT_EQ(reach(), absent);
  ::chmod((home / "disk").c_str(), 0);
  EXPECT_EQ(reach(), closed);
  write("calendars.conf", "~/disk\n~/single/1.ics");
  add("single/1.ics", "one");
  EXPECT_EQ(reach(), readable);
}

TEST_F(VdirTest, KnowsWhereOthersMayNotAnswer) {
  fs::create_directory_symlink("deep/../server/x", home / "link");
  fs::create_directory_symlink(home / "link", home / "chain");
  fs::create_directory_symlink("loop", home / "loop");
  const auto at = [&](const char* name) { return (home / name).string(); };
  const SlowMounts mounts("1 0 0:1 / / rw - nfs4 server:/ rw\nnonsense\n2 1 8:1 / " + at("disk") +
                          " rw shared:1 - ext4 /dev/x rw\n3 1 0:2 / " + at("server") +
                          " rw shared:1 master:2 - fuse.sshfs a b\n4 1 0:3 / " +
                          at("my\\040files") + " rw - cifs a b\n");
  for (const auto& [name, isThere] :
       std::vector<std::pair<const char*, bool>>{{"server", true},
                                                 {"server/a/b", true},
                                                 {"disk/../server", true},
                                                 {"my files/a", true},
                                                 {"link/a", true},
                                                 {"chain", true},
                                                 {"loop/a", false},
                                                 {"serverless", false},
                                                 {"disk/a", false}})
    EXPECT_EQ(mounts.areOnTheWayTo(home / name), isThere) << name;
}

TEST_F(VdirTest, ShowsCalendarsAsTheirFoldersSay) {
  add("data/work/1.ics", "one");
  write("data/work/displayname", " Büro \n");
  write("data/work/color", "#0080ff\n");
  add("data/home/2.ICS", "two");
  write("data/home/color", "blue");
  write("data/new/color", "#00000000");
  fs::create_directories(home / "data/nothing");
  add("other/work/3.ics", "three");
  write("other/sub,scribed.ics",
        calendar("X-WR-CALNAME:Ferien\\, Feste\r\n" + event("four") + event("five")));
  write("calendars.conf", "~/other");
  start();
  ASSERT_TRUE(shows({"five", "four", "one", "three", "two"}));
  const auto calendars = source->calendars();
  ASSERT_THAT(identifiers(), ElementsAre("home", "new", "work", "sub%2Cscribed.ics",
                                         testing::StartsWith("work~")));
  const auto& work = calendars[2];
  EXPECT_EQ(work.title, "Büro");
  EXPECT_EQ(work.sourceTitle, "~/data");
  ASSERT_TRUE(work.color);
  EXPECT_EQ(*work.color, (view::Color{0, 128 / 255.0, 1, 1}));
  EXPECT_EQ(calendars[0].color, std::nullopt);
  EXPECT_EQ(calendars[1].color, view::Color::black(0));
  EXPECT_EQ(calendars[3].title, "Ferien, Feste");
  EXPECT_EQ(calendars[4].sourceTitle, "~/other");

  const auto later = source->events(clock.now(), clock.now() + hours(48), {identifiers()[4]});
  ASSERT_EQ(later.size(), 1U);
  EXPECT_EQ(later[0].title, "three");
  EXPECT_EQ(later[0].calendar, calendars[4]);
  EXPECT_THAT(source->events(clock.now(), clock.now() + hours(48), {}), IsEmpty());
}

TEST_F(VdirTest, ForgetsAllBetweenStopAndStart) {
  add("data/a/1.ics", "one");
  start();
  ASSERT_TRUE(shows({"one"}));
  const int before = notices;
  add("data/a/2.ics", "two");
  source->stop();
  EXPECT_FALSE(tests::waitFor([&] { return notices != before || !identifiers().empty(); }, 300));
  source->start();
  EXPECT_TRUE(shows({"one", "two"}));
}

TEST_F(VdirTest, OneBadFileHidesOnlyItself) {
  add("data/a/good.ics", "good");
  add("data/a/.hidden.ics", "hidden");
  add("data/a/saved.ics~", "backup");
  add("data/a/closed.ics", "closed");
  write("data/a/empty.ics", "");
  write("data/a/torn.ics", calendar(event("torn")).substr(0, 60));
  write("data/a/noise.ics", std::string(5000, '\xff'));
  write("data/a/large.ics", calendar(event("large")));
  fs::resize_file(home / "data/a/large.ics", std::uintmax_t{1} << 31U);
  fs::create_directory(home / "data/a/folder.ics");
  fs::create_symlink("nowhere", home / "data/a/broken.ics");
  fs::create_symlink("loop.ics", home / "data/a/loop.ics");
  ::mkfifo((home / "data/a/pipe.ics").c_str(), 0600);
  ::chmod((home / "data/a/closed.ics").c_str(), 0);
  add("elsewhere/linked.ics", "linked");
  fs::create_symlink(home / "elsewhere/linked.ics", home / "data/a/link.ics");
  const tests::Unprivileged user;
  start();
  EXPECT_TRUE(shows({"good", "linked"}));
}

TEST_F(VdirTest, AFolderThatDoesNotAnswerHoldsNothingElseUp) {
  add("data/a/dead.ics", "two");
  add("data/b/1.ics", "one");
  deadName = "dead.ics";
  start();
  EXPECT_TRUE(shows({"one"}));
  const auto before = std::chrono::steady_clock::now();
  source->stop();
  EXPECT_THAT(identifiers(), IsEmpty());
  source->start();
  EXPECT_TRUE(shows({"one"}));
  source.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  start();
  EXPECT_TRUE(shows({"one"}));
  deadName = nullptr;
  deadName.notify_all();
  EXPECT_TRUE(tests::waitFor(
      [&] {
        return titles() == Strings{"one", "two"};
      },
      15000))
      << "what answers again is not looked at";
}

TEST_F(VdirTest, NoticesWhatOthersChange) {
  add("data/a/1.ics", "one");
  add("data/a/2.ics", "two");
  start();
  ASSERT_TRUE(shows({"one", "two"}));
  struct Change {
    std::string what;
    std::function<void()> make;
    Strings shown;
  };
  const std::vector<Change> changes = {
      {"renamed into place", [&] { replace("data/a/1.ics", "uno"); }, {"two", "uno"}},
      {"written in place", [&] { add("data/a/2.ics", "due"); }, {"due", "uno"}},
      {"new file", [&] { add("data/a/3.ics", "tre"); }, {"due", "tre", "uno"}},
      {"another name",
       [&] { fs::create_hard_link(home / "data/a/3.ics", home / "data/a/4.ics"); },
       {"due", "tre", "tre", "uno"}},
      {"removed", [&] { fs::remove(home / "data/a/4.ics"); }, {"due", "tre", "uno"}},
      {"moved out", [&] { fs::rename(home / "data/a/3.ics", home / "3.ics"); }, {"due", "uno"}},
      {"new folder", [&] { add("data/b/5.ics", "five"); }, {"due", "five", "uno"}},
      {"folder removed", [&] { fs::remove_all(home / "data/a"); }, {"five"}},
      {"folder linked",
       [&] {
         add("else/6.ics", "six");
         fs::create_directory_symlink(home / "else", home / "data/c");
       },
       {"five", "six"}},
      {"link removed", [&] { fs::remove(home / "data/c"); }, {"five"}},
      {"root renamed away", [&] { fs::rename(home / "data", home / "old"); }, {}},
      {"root back", [&] { fs::rename(home / "old", home / "data"); }, {"five"}},
      {"place named", [&] { write("calendars.conf", "~/x/y/z\n~/else/6.ics"); }, {"five", "six"}},
      {"named place made", [&] { add("x/y/z/7.ics", "seven"); }, {"five", "seven", "six"}},
  };
  for (const auto& [what, make, shown] : changes) {
    SCOPED_TRACE(what);
    const int before = notices;
    make();
    ASSERT_TRUE(shows(shown));
    EXPECT_GT(notices, before);
  }
  write("data/b/displayname", "Bee");
  EXPECT_TRUE(tests::waitFor([&] { return source->calendars()[0].title == "Bee"; }));
}

TEST_F(VdirTest, ReadsFoldersThatAreMadeAnew) {
  write("calendars.conf", "~/other/single/s.ics");
  start();
  for (int round = 0; round < 6; ++round) {
    SCOPED_TRACE(round);
    const Strings folders{"data/a", "data/b", "other/single"};
    for (const auto& folder : folders) fs::remove_all(home / folder);
    for (const auto& folder : folders) fs::create_directories(home / folder);
    // Now and then the folders are found while they are still empty.
    static_cast<void>(tests::waitFor([] { return false; }, round * 20));
    Strings written;
    for (const auto& file : {"data/a/1.ics", "data/a/2.ics", "data/b/3.ics", "other/single/s.ics"})
      add(file, written.emplace_back(file + std::to_string(round)));
    ASSERT_TRUE(shows(written));
  }
}

TEST_F(VdirTest, MakesFewNoticesOfABurst) {
  add("data/a/first.ics", "first");
  start();
  ASSERT_TRUE(shows({"first"}));
  constexpr int count = 2000;
  const int before = notices;
  for (int i = 0; i < count; ++i) replace("data/a/" + std::to_string(i) + ".ics", "many");
  ASSERT_TRUE(tests::waitFor([&] { return titles().size() == count + 1; }));
  // At first some close to each other, then at most four a second, however slow this machine is.
  EXPECT_LT(notices - before, count / 20);
}

TEST_F(VdirTest, LooksFurtherWhenAskedFurther) {
  add("data/a/soon.ics", "soon");
  add("data/a/later.ics", "later", hours(24 * 100));
  add("data/a/past.ics", "past", hours(-24 * 100));
  start();
  ASSERT_TRUE(shows({"soon"}));
  EXPECT_TRUE(tests::waitFor([&] { return titles(hours(24 * 100)) == Strings{"later"}; }));
  EXPECT_TRUE(tests::waitFor([&] { return titles(hours(-24 * 100)) == Strings{"past"}; }));
  EXPECT_TRUE(shows({"soon"}));
}

TEST_F(VdirTest, StartsFromItsIndexAndDoesWithout) {
  add("data/a/known.ics", "known");
  add("data/a/changed.ics", "before");
  // A file that was written a moment ago is not remembered.
  const auto isOld = [&] {
    const auto age = std::chrono::system_clock::now().time_since_epoch() -
                     std::chrono::nanoseconds(stampOf(home / "data/a/changed.ics").changed);
    return age > std::chrono::milliseconds(1100);
  };
  ASSERT_TRUE(tests::waitFor(isOld));
  start();
  ASSERT_TRUE(shows({"before", "known"}));
  ASSERT_TRUE(tests::waitFor([&] { return !VdirIndex::load(paths.index).folders.empty(); }));
  source.reset();
  const auto bytes = readWholeFile(paths.index, 1U << 20U).bytes;
  EXPECT_EQ(bytes.find("before"), std::string::npos);

  // An index that says of both files that there is nothing in them to come.
  auto index = VdirIndex::load(paths.index);
  VdirIndexWriter writer(index.since);
  for (auto& [path, files] : index.folders) {
    for (auto& [name, file] : files) file.nextStart = VdirFile::never;
    writer.add(path, files);
  }
  ASSERT_TRUE(std::move(writer).save(paths.index));
  const auto told = readWholeFile(paths.index, 1U << 20U).bytes;
  replace("data/a/changed.ics", "after");
  start();
  EXPECT_TRUE(shows({"after"}));

  auto damaged = told;
  damaged[damaged.size() / 2] ^= 1;
  auto older = told;
  older[std::string_view("valdrix calendar index\n").size()] ^= 64;
  for (const auto& text : {damaged, older, told.substr(0, told.size() / 2), std::string("x")}) {
    source.reset();
    std::ofstream(paths.index) << text;
    start();
    EXPECT_TRUE(shows({"after", "known"}));
  }
}

}  // namespace
}  // namespace valdrix::desktop

/// Stands before the C library's.
extern "C" int openat(int folder, const char* name, int flags, ...) {
  for (const char* dead; (dead = valdrix::desktop::deadName) && std::string_view(dead) == name;)
    valdrix::desktop::deadName.wait(dead);
  std::va_list arguments;
  va_start(arguments, flags);
  const int mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, int) : 0;
  va_end(arguments);
  return static_cast<int>(::syscall(SYS_openat, folder, name, flags, mode));
}
