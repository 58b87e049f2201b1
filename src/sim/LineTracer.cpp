#include "sim/LineTracer.h"

#include <algorithm>
#include <utility>

namespace valdrix::sim {

namespace {

const SeenLine* find(const std::vector<SeenLine>& lines, const std::string& key) {
  const auto line = std::ranges::find(lines, key, &SeenLine::key);
  return line == lines.end() ? nullptr : &*line;
}

}  // namespace

LineTracer::LineTracer(std::string channel, std::function<std::vector<SeenLine>()> lines,
                       Trace& trace, platform::RunLoop& runLoop)
    : channel_(std::move(channel)),
      lines_(std::move(lines)),
      trace_(trace),
      runLoop_(runLoop),
      observer_([this] { schedule(); }) {}

void LineTracer::schedule() {
  if (std::exchange(isUpdateScheduled_, true)) return;
  runLoop_.async(lifetime_.weak([this] { update(); }));
}

void LineTracer::report() {
  update();
  for (const auto& line : latest_) trace_.add(channel_ + ' ' + line.text);
}

void LineTracer::update() {
  isUpdateScheduled_ = false;
  const auto former = std::exchange(latest_, observer_.track(lines_));
  for (const auto& line : former)
    if (!find(latest_, line.key)) trace_.add(channel_ + " gone " + line.text);
  for (const auto& line : latest_) {
    const auto* before = find(former, line.key);
    if (!before || before->text != line.text) trace_.add(channel_ + ' ' + line.text);
  }
}

}  // namespace valdrix::sim
