#include "tests/wayland/WaylandDeskWorld.h"

#include <algorithm>

#include <QCoreApplication>
#include <linux/input-event-codes.h>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

constexpr QSize extent{1500, 1000};

}  // namespace

WaylandDeskWorld::WaylandDeskWorld(Monitors monitors) {
  if (monitors == Monitors::movable) {
    host_ = std::make_unique<SwayCompositor>();
    compositor_ = std::make_unique<SwayCompositor>(host_.get());
  } else {
    compositor_ = std::make_unique<SwayCompositor>();
  }
  EXPECT_TRUE(compositor_->isRunning()) << "no compositor: is sway installed?";
  compositor_->enter();
  if (!host_) {
    client_ = std::make_unique<WaylandTestClient>(extent);
    client_->movePointer({1, extent.height() - 2.0});
  }
  desktop_ = std::make_unique<desktop::WaylandDesktop>(textMetrics_, housings_);
  EXPECT_TRUE(desktop_->connection.isUsable());
  settle();
}

WaylandDeskWorld::~WaylandDeskWorld() {
  desktop_.reset();
  client_.reset();
  compositor_.reset();
}

view::HostingView::Services WaylandDeskWorld::services() {
  return {.textMetrics = textMetrics_,
          .now = [this] { return runLoop_.now(); },
          .scheduleRepeatingTimer =
              [this](double interval, std::function<void()> block) {
                return runLoop_.scheduleTimer(interval, true, std::move(block));
              }};
}

void WaylandDeskWorld::move(view::Point to) {
  const auto screen = screens().mainScreen()->frame;
  client_->movePointer({to.x, screen.maxY() - to.y});
  settle();
}

void WaylandDeskWorld::drag(const std::vector<view::Point>& path, bool withRightButton) {
  const std::uint32_t button = withRightButton ? BTN_RIGHT : BTN_LEFT;
  client_->setButton(button, true);
  settle();
  for (const auto& point : path) move(point);
  client_->setButton(button, false);
  settle();
}

bool WaylandDeskWorld::clickReachesDesktop() {
  const int before = client_->presses();
  client_->setButton(BTN_LEFT, true);
  client_->setButton(BTN_LEFT, false);
  settle();
  return client_->presses() > before;
}

// The compositor answers in order: with the answer to a question, all events before it are here.
// Several times, for what the events make us ask of it.
void WaylandDeskWorld::settle() {
  for (int turn = 0; turn < 6; ++turn) {
    desktop_->connection.roundTrip();
    QCoreApplication::processEvents();
  }
}

bool WaylandDeskWorld::runUntilStill(view::HostingView& content) {
  const bool isStill = waitFor([&] { return !content.needsFrame(); });
  settle();
  return isStill;
}

std::uint64_t WaylandDeskWorld::framesDrawn(platform::PanelWindow& window) {
  return dynamic_cast<desktop::WaylandPanelWindow&>(window).framesDrawn();
}

std::string WaylandDeskWorld::nameOf(const std::string& monitor) { return outputs_[monitor]; }

void WaylandDeskWorld::setMonitors(const std::vector<Monitor>& monitors) {
  const auto isWanted = [&](const std::string& output) {
    return std::ranges::any_of(
        monitors, [&](const Monitor& monitor) { return outputs_[monitor.name] == output; });
  };
  for (const auto& output : compositor_->outputs())
    if (!isWanted(output)) compositor_->removeOutput(output);
  int x = 0;
  for (const auto& monitor : monitors) {
    auto& output = outputs_[monitor.name];
    const auto all = compositor_->outputs();
    if (std::ranges::find(all, output) == all.end()) output = compositor_->addOutput();
    compositor_->resizeOutput(output, monitor.width, monitor.height);
    EXPECT_TRUE(compositor_->command("output " + output + " position " + std::to_string(x) + " 0"));
    x += monitor.width;
  }
  const auto isDone = [&] {
    const auto now = screens().screens();
    return std::ranges::equal(now, monitors, [&](const auto& screen, const Monitor& monitor) {
      return screen.name == outputs_[monitor.name] && screen.frame.width == monitor.width &&
             screen.frame.height == monitor.height;
    });
  };
  EXPECT_TRUE(waitFor(isDone));
  settle();
}

std::vector<std::string> deskWorldNames() { return {"wayland"}; }
std::vector<std::string> dragWorldNames() { return {}; }
std::vector<std::string> screenWorldNames() { return {"waylandNested"}; }

std::unique_ptr<DeskWorld> makeDeskWorld(const std::string& name) {
  using Monitors = WaylandDeskWorld::Monitors;
  return std::make_unique<WaylandDeskWorld>(name == "waylandNested" ? Monitors::movable
                                                                    : Monitors::fixed);
}

}  // namespace valdrix::tests
