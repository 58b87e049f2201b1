#pragma once

#include <cstdint>
#include <functional>

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QString>
#include <QTimer>

#include "desktop/session/AgentAnswer.h"
#include "desktop/session/SettingsRequest.h"
#include "view/Geometry.h"

namespace valdrix::desktop {

/// The running agent's voice on the session bus: what the object /org/valdrix/Agent answers to the
/// methods of the interface org.valdrix.Agent1. Every method replies with one text for the user, or
/// with the error org.valdrix.Agent1.Refused, whose message is that text. Main thread only.
class AgentObject final : public QDBusVirtualObject {
 public:
  /// A media key by its code, pressed by command.
  struct KeyPress {
    std::uint32_t code;
    bool isFine;
    bool isRepeat;
    /// Whoever sends it does not know whether it repeats: it does where it follows quickly.
    bool isDebounced;
  };
  /// What the methods do. Each returns at once.
  struct Handlers {
    /// The agent's state as JSON.
    std::function<AgentAnswer()> status{};
    /// Asks the user for access to the calendars.
    std::function<AgentAnswer()> requestCalendarAccess{};
    /// Opens the window that is asked for.
    std::function<AgentAnswer(const SettingsRequest&)> openSettings{};
    std::function<AgentAnswer(const KeyPress&)> pressKey{};
    /// Show the indicator of the present level.
    std::function<AgentAnswer()> showVolume{};
    std::function<AgentAnswer()> showBrightness{};
    /// What is known of every screen and its camera housing.
    std::function<AgentAnswer()> describeHousings{};
    /// Shows a housing of that size, in points, until `endPreview`.
    std::function<AgentAnswer(view::Size)> previewHousing{};
    /// Whoever asked for the preview has gone.
    std::function<void()> endPreview{};
    /// Begin to hand the desktop's keys over, or to give them back.
    std::function<AgentAnswer()> entrustKeys{};
    std::function<AgentAnswer()> restoreKeys{};
    /// What has become of it; no text as long as it goes on.
    std::function<AgentAnswer()> describeCustody{};
    std::function<AgentAnswer()> quit{};
  };

  explicit AgentObject(Handlers handlers);

  /// Answers on this connection from now on, for as long as it lasts.
  void serve(QDBusConnection& connection);

 private:
  struct Method;
  static const Method methods[];

  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  /// Ends the preview when the program with this name leaves the bus.
  void followPreviewer(const QString& name, QDBusConnection connection);
  void endPreview();

  Handlers handlers_;
  QDBusServiceWatcher previewer_;
  /// Fires when the connection on which a preview was asked for is lost.
  QTimer loss_;
};

}  // namespace valdrix::desktop
