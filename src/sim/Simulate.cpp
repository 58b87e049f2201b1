#include "sim/Simulate.h"

#include <cmath>
#include <fstream>
#include <iomanip>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>

#include <system_error>

#include "sim/ScenarioError.h"
#include "sim/ScenarioPlayer.h"
#include "sim/TraceChannels.h"
#include "sim/TraceDifference.h"

namespace valdrix::sim {

namespace {

enum ExitCode { success = 0, differs = 1, isInvalid = 2 };

/// Room around the panel in its pictures, in points.
constexpr double pictureMargin = 20;
constexpr int timeWidth = 10;

std::optional<std::string> contentsOf(const std::filesystem::path& file) {
  // A folder opens like a file and fails only when it is read.
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return std::nullopt;
  const std::ifstream stream(file, std::ios::binary);
  if (!stream.is_open()) return std::nullopt;
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// What can be seen of the panel, with some room at its sides and below, on whole device pixels.
view::Rect picturePart(const view::HostingView& content, double scale) {
  view::Rect panel;
  for (const auto& item : content.displayList()) {
    view::Rect seen = item.bounds;
    for (const auto& clip : item.clips) seen = seen.intersected(clip->bounds());
    panel = panel.united(seen);
  }
  const double left = std::floor((panel.minX() - pictureMargin) * scale) / scale;
  const double right = std::ceil((panel.maxX() + pictureMargin) * scale) / scale;
  return {left, 0, right - left, std::ceil((panel.maxY() + pictureMargin) * scale) / scale};
}

ScenarioPlayer::TakePicture pictureTaker(const SimulateOptions& options, FramePainter* painter) {
  if (!painter || options.framesFolder.empty()) return {};
  return [&options, painter](const std::string& name, const view::HostingView& content) {
    std::error_code error;
    std::filesystem::create_directories(options.framesFolder, error);
    const auto file = options.framesFolder / name;
    const bool isWritten =
        painter->paint(content, picturePart(content, options.scale), options.scale, file);
    return isWritten ? std::string() : "impossible d'écrire " + file.string();
  };
}

void printLines(const std::vector<std::string>& lines, std::ostream& out) {
  for (const auto& line : lines) {
    const auto gap = line.find(' ');
    out << std::setw(timeWidth) << line.substr(0, gap) << ' ' << line.substr(gap) << '\n';
  }
}

int judge(const Scenario& scenario, const std::vector<std::string>& lines, std::ostream& errors) {
  if (!scenario.expectedTrace) return success;
  const auto difference = traceDifference(*scenario.expectedTrace, lines);
  if (difference.empty()) return success;
  errors << "La trace n'est pas celle attendue (< attendu seulement, > obtenu seulement) :\n"
         << difference;
  return differs;
}

}  // namespace

int simulate(const SimulateOptions& options, std::ostream& out, std::ostream& errors,
             FramePainter* painter) {
  const auto text = contentsOf(options.file);
  if (!text) {
    errors << options.file.string() << ": illisible\n";
    return isInvalid;
  }
  try {
    const auto scenario = Scenario::parse(*text);
    ScenarioPlayer player(options.textMetrics, pictureTaker(options, painter));
    player.desktop().panelWindows.setScale(options.scale);
    player.play(scenario);
    const auto lines = traceLines(player.desktop().trace, scenario.channels);
    printLines(lines, out);
    return judge(scenario, lines, errors);
  } catch (const ScenarioError& error) {
    errors << options.file.string() << ':' << error.line() << ": " << error.what() << '\n';
    return isInvalid;
  }
}

}  // namespace valdrix::sim
