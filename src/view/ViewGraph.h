#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "view/HostingView.h"
#include "view/Node.h"
#include "view/ToolTip.h"
#include "view/Transaction.h"

namespace valdrix::view {

class ComponentNodeBase;

/// The tree behind one hosting view and the state that its nodes share.
class ViewGraph {
 public:
  explicit ViewGraph(HostingView::Services services);
  ~ViewGraph();
  ViewGraph(const ViewGraph&) = delete;
  ViewGraph& operator=(const ViewGraph&) = delete;

  void setRoot(const View& view);

  // What nodes ask for.
  [[nodiscard]] const HostingView::Services& services() const { return services_; }
  /// The time that animations start at.
  [[nodiscard]] double now() const { return services_.now(); }
  /// The time for which the frame is made.
  [[nodiscard]] double frameTime() const { return frameTime_; }
  /// Counts frames.
  [[nodiscard]] std::uint64_t frameNumber() const { return frameNumber_; }
  /// Whether something moves in that frame.
  [[nodiscard]] bool isMoving() const { return isMoving_; }
  /// Whether layers that cannot be seen are placed too.
  [[nodiscard]] bool preparesHidden() const { return preparesHidden_; }
  /// Device pixels per point.
  [[nodiscard]] double scale() const { return scale_; }
  [[nodiscard]] const std::string& locale() const { return locale_; }
  /// The locale for what is taken over from now on; gives the one before.
  std::string exchangeLocale(std::string locale) {
    return std::exchange(locale_, std::move(locale));
  }
  [[nodiscard]] std::uint64_t nextSerial() { return ++serial_; }
  void noteAnimationStarted() { hasStartedAnimation_ = true; }
  /// Runs `action` once the tree is up to date.
  void afterUpdate(std::function<void()> action) { actions_.push_back(std::move(action)); }
  void requestFrame();

  // What components tell.
  void componentDidChange(ComponentNodeBase& component);
  void componentGone(ComponentNodeBase& component);
  void hoverGone(const HoverNode& hover);
  void buttonGone(const ButtonNode& button);

  // What the hosting view does.
  void flush();
  HostingView::Frame prepareFrame(double lookAhead);
  void prepareHidden();
  void pointerMoved(Point point);
  void pointerExited();
  void pointerPressed();
  void pointerReleased();

  Rect frame;
  std::uint32_t autoresizingMask = 0;
  std::function<void()> onNeedsFrame;
  std::function<void(const Animation&)> onAnimationStarted;

  void setScale(double scale);
  [[nodiscard]] bool needsFrame() const { return needsFrame_; }
  [[nodiscard]] const DisplayList& displayList() const { return list_; }
  [[nodiscard]] const std::string& toolTip() const { return toolTip_; }

 private:
  void updateComponents();
  void runActions();
  void updateHover();
  void placeRoot();

  HostingView::Services services_;
  /// Takes over what changed in a transaction before the next one begins.
  Token boundaries_ = Transaction::observeBoundaries([this] { updateComponents(); });
  double frameTime_ = 0;
  std::uint64_t frameNumber_ = 1;
  double scale_ = 1;
  bool isMoving_ = false;
  bool preparesHidden_ = false;
  bool needsFrame_ = false;
  bool isUpdating_ = false;
  bool hasStartedAnimation_ = false;
  std::string locale_;
  std::uint64_t serial_ = 0;
  std::vector<ComponentNodeBase*> dirty_;
  std::vector<std::function<void()>> actions_;
  DisplayList list_;
  DisplayList formerList_;

  std::optional<Point> pointer_;
  std::vector<HoverNode*> hovered_;
  ButtonNode* button_ = nullptr;
  ButtonNode* pressed_ = nullptr;
  std::string toolTip_;
  ToolTip sign_{services_, [this] { requestFrame(); }};

  std::unique_ptr<Node> root_;
};

}  // namespace valdrix::view
