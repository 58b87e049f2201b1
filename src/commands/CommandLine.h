#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "media/MediaKeyMonitor.h"
#include "view/Geometry.h"

namespace valdrix::commands {

/// Runs the agent, or hands over to the one that runs.
struct Run {};
/// Opens the settings of the running agent, or runs the agent with its settings open.
struct OpenSettings {
  /// Which tab, counted from 0; none: the one that was seen last.
  std::optional<std::size_t> tab;
};
/// Opens the privacy page of the running agent, or runs the agent with that page open.
struct OpenPermissions {
  /// Which tab, counted from 0; none: the one that was seen last.
  std::optional<std::size_t> tab;
};
/// Has the running agent take a media key.
struct PressKey {
  MediaKeyMonitor::KeyAction action;
  /// Whether it repeats where it follows quickly, because whoever presses it cannot say.
  bool isDebounced = false;
};
/// Has the running agent show the present level.
struct ShowLevel {
  enum class Kind { volume, brightness };
  Kind kind;
};
/// Has the running agent hand the desktop's keys over.
struct EntrustKeys {};
/// Gives the desktop its keys back, with or without a running agent.
struct RestoreKeys {};
/// Prints what the running agent knows of camera housings.
struct DescribeHousings {};
/// Has the running agent show a housing of that size, in points, while the user looks.
struct PreviewHousing {
  view::Size size;
};
/// Prints the running agent's state as JSON.
struct Status {};
/// Ends the running agent.
struct Quit {};
/// Has the running agent ask the user for access to the calendars.
struct Access {};
/// Plays a scenario on the simulated desktop.
struct Simulate {
  std::string file;
  /// Where pictures go; empty for none.
  std::string framesFolder;
  /// Device pixels per point of the pictures, above 0.
  double scale = 1;
};
struct ShowVersion {};
struct ShowHelp {};
/// The words make no sense; the text says why.
struct Misuse {
  std::string reason;
};

using Command = std::variant<Run, OpenSettings, OpenPermissions, PressKey, ShowLevel, EntrustKeys,
                             RestoreKeys, DescribeHousings, PreviewHousing, Status, Quit, Access,
                             Simulate, ShowVersion, ShowHelp, Misuse>;

/// What the words after the program's name ask for.
[[nodiscard]] Command parse(const std::vector<std::string>& words);

/// A size of a housing in points, written as 185x32; none when the text is not one.
[[nodiscard]] std::optional<view::Size> parseSize(std::string_view text);

/// How the program is called.
[[nodiscard]] std::string usage();

}  // namespace valdrix::commands
