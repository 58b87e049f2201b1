// What valdrix costs on a real desktop, beside programs that do the least that can be done.

#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>

#include "bench/desktop/BenchDesktop.h"
#include "bench/desktop/Measurements.h"
#include "bench/desktop/Report.h"

namespace {

using namespace valdrix::bench;

int fail(const std::string& reason) {
  std::fprintf(stderr, "desktop_bench: %s\n", reason.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addHelpOption();
  parser.addOptions({{"seconds", "How long to watch the programs at rest.", "number", "30"},
                     {"starts", "How often to start each program.", "number", "7"},
                     {"presses", "How many single key presses to time.", "number", "25"},
                     {"json", "Also write the results there.", "file"}});
  parser.process(application);

  BenchDesktop desktop;
  if (!desktop.start()) return fail("cannot start " + desktop.missing());
  Report report;
  const bool isMeasured = measureStart(desktop, report, parser.value("starts").toInt()) &&
                          measureRest(desktop, report, parser.value("seconds").toDouble()) &&
                          measureKeyLatency(desktop, report, parser.value("presses").toInt()) &&
                          measureHeldKey(desktop, report, 100) &&
                          measureExpansion(desktop, report, 5);
  report.print();
  if (!isMeasured) return fail("the last of these could not be measured to its end");
  if (parser.isSet("json") && !report.save(parser.value("json")))
    return fail("cannot write " + parser.value("json").toStdString());
  return 0;
}
