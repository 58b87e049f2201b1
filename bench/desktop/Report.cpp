#include "bench/desktop/Report.h"

#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace valdrix::bench {

namespace {

bool isMet(const Report::Line& line) {
  const double yardstick = line.yardstick.value_or(0);
  switch (line.goal) {
    case Report::Goal::ratio:
      return line.valdrix <= line.limit * yardstick;
    case Report::Goal::difference:
      return line.valdrix <= line.limit + yardstick;
    case Report::Goal::absolute:
      return line.valdrix <= line.limit;
    case Report::Goal::none:
      break;
  }
  return true;
}

QString number(double value) { return QString::number(value, 'f', value < 100 ? 1 : 0); }

/// What the goal is, and how far it is met.
QString verdict(const Report::Line& line) {
  const QString end = isMet(line) ? "" : "  MISSED";
  switch (line.goal) {
    case Report::Goal::ratio:
      return QStringLiteral("%1 times (goal %2)%3")
          .arg(line.valdrix / line.yardstick.value_or(1), 0, 'f', 2)
          .arg(line.limit)
          .arg(end);
    case Report::Goal::difference:
      return QStringLiteral("%1 more (goal %2)%3")
          .arg(number(line.valdrix - line.yardstick.value_or(0)), number(line.limit), end);
    case Report::Goal::absolute:
      return QStringLiteral("(goal %1)%2").arg(number(line.limit), end);
    case Report::Goal::none:
      break;
  }
  return {};
}

QJsonObject asJson(const std::string& part, const Report::Line& line) {
  QJsonObject object{{"part", QString::fromStdString(part)},
                     {"what", QString::fromStdString(line.what)},
                     {"unit", QString::fromStdString(line.unit)},
                     {"valdrix", line.valdrix}};
  if (line.yardstick) object["yardstick"] = *line.yardstick;
  if (line.goal != Report::Goal::none) object["isGoalMet"] = isMet(line);
  return object;
}

}  // namespace

void Report::begin(const std::string& title) {
  parts_.push_back({title, {}});
  std::fprintf(stderr, "measuring: %s\n", title.c_str());
}

void Report::add(const Line& line) { parts_.back().lines.push_back(line); }

void Report::print() const {
  std::printf("%-42s %10s %10s\n", "", "valdrix", "yardstick");
  for (const auto& part : parts_) {
    std::printf("%s\n", part.title.c_str());
    for (const auto& line : part.lines)
      std::printf("  %-40s %10s %10s  %s\n", (line.what + ", " + line.unit).c_str(),
                  qPrintable(number(line.valdrix)),
                  line.yardstick ? qPrintable(number(*line.yardstick)) : "",
                  qPrintable(verdict(line)));
  }
}

bool Report::save(const QString& file) const {
  QJsonArray lines;
  for (const auto& part : parts_)
    for (const auto& line : part.lines) lines.append(asJson(part.title, line));
  QSaveFile target(file);
  return target.open(QIODevice::WriteOnly) && target.write(QJsonDocument(lines).toJson()) > 0 &&
         target.commit();
}

}  // namespace valdrix::bench
