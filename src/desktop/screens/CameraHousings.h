#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QString>

#include "platform/Screens.h"
#include "view/Geometry.h"

class QJsonObject;

namespace valdrix::desktop {

/// What is known of camera housings cut into the picture of the built-in panel. No protocol of a
/// desktop reports them, so there is, the first that applies: `VALDRIX_NOTCH=WxH` in the
/// environment (points), a file of the user, a table of known panels, and the height that the
/// kernel's device tree gives.
///
/// The file holds one panel or a list of them as JSON: `name`, `x-res` and `y-res` (pixels of the
/// panel), `cutouts`, each with `name` and `path` (SVG notation, in those pixels). A panel applies
/// to a built-in screen of the same shape.
class CameraHousings {
 public:
  struct Sources {
    /// What VALDRIX_NOTCH says; empty for nothing.
    QString notch;
    /// The user's file; need not exist.
    QString userFile;
    /// The root of the tree that holds proc/device-tree and sys.
    QString systemRoot = QStringLiteral("/");

    [[nodiscard]] static Sources fromEnvironment();
  };

  explicit CameraHousings(const Sources& sources);

  /// Enters the housing into the screen that has it.
  void applyTo(std::vector<platform::Screen>& screens) const;

  /// What was wrong with what the user wrote, one sentence each, beginning with the file and line
  /// or the variable. Wrong parts are left out, the rest holds.
  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }

 private:
  struct Panel {
    double width;  ///< of the whole panel, in its pixels
    double height;
    view::Rect cutout;  ///< in the same pixels, from the top left
  };

  void readNotch(const QString& text);
  void readFile(const QString& path);
  void readPanel(const QJsonObject& object, const QByteArray& text, const QString& path);
  void readSystem(const QString& root);
  static bool cutOut(platform::Screen& screen, const Panel& panel);

  std::optional<view::Size> notch_;
  std::vector<Panel> panels_;
  /// From the device tree, in pixels; 0 when it names none.
  double kernelNotchHeight_ = 0;
  std::vector<std::string> problems_;
};

}  // namespace valdrix::desktop
