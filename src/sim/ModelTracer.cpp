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

std::string accessText(platform::EventAuthorization status) {
  switch (status) {
    case platform::EventAuthorization::notDetermined:
      return "access notDetermined";
    case platform::EventAuthorization::restricted:
      return "access restricted";
    case platform::EventAuthorization::denied:
      return "access denied";
    case platform::EventAuthorization::fullAccess:
      return "access fullAccess";
    case platform::EventAuthorization::writeOnly:
      break;
  }
  return "access writeOnly";
}

std::string eventsText(const std::vector<platform::Event>& events) {
  std::string text;
  for (const auto& event : events)
    text += (text.empty() ? " " : " | ") + event.title.value_or("(untitled)");
  return "events" + (text.empty() ? " none" : text);
}

/// Where these stand among the lines.
constexpr std::size_t accessLine = 4;
constexpr std::size_t eventsLine = 5;

}  // namespace

ModelTracer::ModelTracer(const NotchViewModel& model, const CalendarService& calendarService,
                         Trace& trace, platform::RunLoop& runLoop)
    : model_(model),
      calendarService_(calendarService),
      trace_(trace),
      runLoop_(runLoop),
      observer_([this] { scheduleUpdate(); }) {
  latest_ = observer_.track([this] { return lines(); });
  latest_[accessLine] = accessText(platform::EventAuthorization::notDetermined);
  latest_[eventsLine] = eventsText({});
  scheduleUpdate();
}

void ModelTracer::scheduleUpdate() {
  if (std::exchange(isUpdateScheduled_, true)) return;
  runLoop_.async(lifetime_.weak([this] { update(); }));
}

std::vector<std::string> ModelTracer::lines() const {
  const view::Size size = model_.expandedSize;
  return {
      "presentation " + nameOf(model_.presentation()),
      "expandedSize " + formatNumber(size.width) + 'x' + formatNumber(size.height),
      "level volume " + formatNumber(model_.volumeLevel.get()) + (model_.isMuted ? " muted" : ""),
      "level brightness " + formatNumber(model_.brightnessLevel.get()),
      accessText(calendarService_.authStatus()),
      eventsText(calendarService_.events()),
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
