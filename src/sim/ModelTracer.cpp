#include "sim/ModelTracer.h"

#include <utility>

namespace valdrix::sim {

namespace {

std::string nameOf(NotchPresentation presentation) {
  switch (presentation) {
    case NotchPresentation::collapsed:
      return "collapsed";
    case NotchPresentation::volumeHUD:
      return "volumeHUD";
    case NotchPresentation::brightnessHUD:
      return "brightnessHUD";
    case NotchPresentation::expanded:
      break;
  }
  return "expanded";
}

}  // namespace

ModelTracer::ModelTracer(const NotchViewModel& model, Trace& trace, platform::RunLoop& runLoop)
    : model_(model), trace_(trace), runLoop_(runLoop), observer_([this] {
        if (std::exchange(isUpdateScheduled_, true)) return;
        runLoop_.async(lifetime_.weak([this] { update(); }));
      }) {
  latest_ = observer_.track([this] { return lines(); });
}

std::vector<std::string> ModelTracer::lines() const {
  const view::Size size = model_.expandedSize;
  return {
      "presentation " + nameOf(model_.presentation()),
      "expandedSize " + formatNumber(size.width) + 'x' + formatNumber(size.height),
      "level volume " + formatNumber(model_.volumeLevel.get()) + (model_.isMuted ? " muted" : ""),
      "level brightness " + formatNumber(model_.brightnessLevel.get()),
  };
}

void ModelTracer::update() {
  isUpdateScheduled_ = false;
  auto now = observer_.track([this] { return lines(); });
  for (std::size_t i = 0; i < now.size(); ++i)
    if (now[i] != latest_[i]) trace_.add(now[i]);
  latest_ = std::move(now);
}

}  // namespace valdrix::sim
