// Folders of calendars, from a hundred to a hundred thousand events: how long until they are shown,
// beside khal and beside a program that reads everything.

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "bench/calendar/EventFolder.h"
#include "bench/calendar/StoreProbe.h"
#include "bench/desktop/Clock.h"
#include "bench/desktop/Report.h"
#include "bench/desktop/Samples.h"

namespace {

namespace fs = std::filesystem;

using valdrix::bench::Clock;
using valdrix::bench::EventFolder;
using valdrix::bench::Figures;
using valdrix::bench::Report;
using valdrix::bench::Samples;
using valdrix::bench::secondsSince;

constexpr int longestWait = 30 * 60 * 1000;

/// Runs this program with other words in a process of its own.
Figures probe(const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.start(QCoreApplication::applicationFilePath(), arguments);
  process.waitForFinished(longestWait);
  Figures figures;
  for (const auto& line : process.readAllStandardOutput().split('\n'))
    if (const auto words = line.split(' '); words.size() == 2)
      figures[words[0].toStdString()] = words[1].toDouble();
  return figures;
}

void print(const Figures& figures) {
  for (const auto& [name, value] : figures) std::printf("%s %.9f\n", name.c_str(), value);
}

/// khal's configuration for the calendar below `home`, and how it is called.
class Khal {
 public:
  explicit Khal(const fs::path& home) : configuration_(home / "khal.conf") {
    QFile file(QString::fromStdString(configuration_.string()));
    static_cast<void>(file.open(QFile::WriteOnly));
    file.write(QStringLiteral("[calendars]\n[[bench]]\npath = %1/calendars/bench\n"
                              "[sqlite]\npath = %1/khal.db\n"
                              "[locale]\nlocal_timezone = Europe/Paris\n"
                              "default_timezone = Europe/Paris\n")
                   .arg(QString::fromStdString(home.string()))
                   .toUtf8());
  }
  [[nodiscard]] static bool isInstalled() {
    return !QStandardPaths::findExecutable(QStringLiteral("khal")).isEmpty();
  }
  /// Seconds of one listing of the week.
  [[nodiscard]] double list() const {
    QProcess process;
    const auto start = Clock::now();
    process.start(QStringLiteral("khal"),
                  {"-c", QString::fromStdString(configuration_.string()), "list", "today", "7d"});
    process.waitForFinished(longestWait);
    return secondsSince(start);
  }

 private:
  fs::path configuration_;
};

std::optional<double> warmKhal(const fs::path& home, std::size_t size, std::size_t largest) {
  if (size > largest || !Khal::isInstalled()) return std::nullopt;
  const Khal khal(home);
  static_cast<void>(khal.list());
  Samples samples;
  for (int i = 0; i < 3; ++i) samples.add(khal.list());
  return samples.median();
}

void measure(Report& report, std::size_t size, std::size_t largestForKhal) {
  const QTemporaryDir temporary;
  const fs::path home = temporary.path().toStdString();
  const EventFolder folder(home / "calendars" / "bench", size);
  const auto path = QString::fromStdString(home.string());
  const auto store = [&](std::size_t expected, const char* changes) {
    return probe({"--store", path, "--expected", QString::number(expected), "--changes", changes});
  };
  report.begin(std::to_string(size) + " events");
  // What was written a moment ago is not remembered, see `readFile`.
  valdrix::bench::pause(1.2);

  const auto naive = probe({"--naive", path + "/calendars/bench"});
  const auto expected = EventFolder::eventsOfWeek;
  auto first = store(expected, "0");
  report.add({"first index: first events shown",
              "ms",
              first["first"] * 1e3,
              {},
              Report::Goal::absolute,
              1000});
  report.add({"first index: all read, index on disk", "ms", first["indexed"] * 1e3,
              naive.at("complete") * 1e3, Report::Goal::ratio, 1});

  // What came meanwhile must be in the list, too.
  folder.add("added");
  auto second = store(expected + 1, "20");
  report.add({"second start: list complete",
              "ms",
              second["complete"] * 1e3,
              {},
              Report::Goal::absolute,
              500});
  if (const auto khal = warmKhal(home, size, largestForKhal))
    report.add({"second start: the list as it was", "ms", second["known"] * 1e3, *khal * 1e3,
                Report::Goal::ratio, 0.05});
  report.add(
      {"one reload of the week", "µs", second["reload"] * 1e6, {}, Report::Goal::absolute, 1000});
  report.add({"one file changed until shown",
              "ms",
              second["change"] * 1e3,
              {},
              Report::Goal::absolute,
              50});
  report.add({"longest turn of the main thread",
              "ms",
              std::max(first["turn"], second["turn"]) * 1e3,
              {},
              Report::Goal::absolute,
              16.7});
  const auto events = static_cast<double>(size);
  // What every process takes, whatever it shows, weighs on small folders.
  const auto goal = size >= 100000 ? Report::Goal::absolute : Report::Goal::none;
  const auto beyondIndex = [&](Figures& figures) {
    return (figures["bytes"] - figures["index"]) / events;
  };
  report.add({"index on disk, an event", "bytes", second["index"] / events});
  report.add({"memory beyond that after the first index, an event",
              "bytes",
              beyondIndex(first),
              {},
              goal,
              200});
  report.add({"memory beyond that after the second start, an event",
              "bytes",
              beyondIndex(second),
              {},
              goal,
              200});
  report.add({"events listed", "count", first["events"], naive.at("events")});
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("TZ", "Europe/Paris");
  const QCoreApplication application(argc, argv);
  QCommandLineParser options;
  options.addOptions({{"sizes", "", "numbers", "100,1000,10000,100000"},
                      {"khal-up-to", "", "number", "10000"},
                      {"json", "", "file"},
                      {"store", "", "home"},
                      {"expected", "", "number"},
                      {"changes", "", "number"},
                      {"naive", "", "folder"}});
  options.process(application);
  using namespace valdrix::bench;
  if (options.isSet("store")) {
    print(probeStore(options.value("store").toStdString(), options.value("expected").toULongLong(),
                     options.value("changes").toInt()));
    return 0;
  }
  if (options.isSet("naive")) {
    print(probeNaive(options.value("naive").toStdString()));
    return 0;
  }
  Report report;
  for (const auto& size : options.value("sizes").split(','))
    measure(report, size.toULongLong(), options.value("khal-up-to").toULongLong());
  report.print();
  return options.isSet("json") && !report.save(options.value("json")) ? 1 : 0;
}
