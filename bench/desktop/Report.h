#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QString>

namespace valdrix::bench {

/// The table of what was measured.
class Report {
 public:
  enum class Goal {
    none,
    /// At most `limit` times the yardstick.
    ratio,
    /// At most `limit` more than the yardstick.
    difference,
    /// At most `limit`.
    absolute,
  };
  struct Line {
    std::string what;
    std::string unit;
    double valdrix = 0;
    std::optional<double> yardstick{};
    Goal goal = Goal::none;
    double limit = 0;
  };

  /// Starts a part of the table, and says so while it is measured.
  void begin(const std::string& title);
  void add(const Line& line);

  void print() const;
  /// Writes everything as JSON; whether it could be written.
  [[nodiscard]] bool save(const QString& file) const;

 private:
  struct Part {
    std::string title;
    std::vector<Line> lines;
  };
  std::vector<Part> parts_;
};

}  // namespace valdrix::bench
