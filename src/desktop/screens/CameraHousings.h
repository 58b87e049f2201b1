#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QString>

#include "observation/Listeners.h"
#include "observation/Token.h"
#include "platform/Screens.h"
#include "view/Geometry.h"

class QJsonObject;

namespace valdrix::desktop {

/// What is known of camera housings cut into the picture of the built-in panel. No protocol of a
/// desktop reports them, so there is, the first that applies: a preview, `VALDRIX_NOTCH=WxH` in the
/// environment (points), a file of the user, a table of known panels, and the height that the
/// kernel's device tree gives. Main thread only.
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
  /// Where the numbers come from.
  enum class Origin { preview, environment, userFile, table, kernel };
  /// A housing on one of several screens.
  struct Housing {
    std::size_t screen;  ///< which of them
    view::Rect cutout;   ///< in points from the screen's top left
    Origin origin;
    /// The panel as the user's file or the table names it; may be empty.
    std::string panel;
  };

  explicit CameraHousings(const Sources& sources);
  CameraHousings(const CameraHousings&) = delete;
  CameraHousings& operator=(const CameraHousings&) = delete;

  /// The housing that one of the screens has.
  [[nodiscard]] std::optional<Housing> find(const std::vector<platform::Screen>& screens) const;
  /// Enters the housing into the screen that has it.
  void applyTo(std::vector<platform::Screen>& screens) const;

  /// Tries another size, in points, above everything else that is known; none ends it.
  void setPreview(std::optional<view::Size> size);
  /// The user's file.
  [[nodiscard]] std::filesystem::path userFile() const;
  /// Reads that file again.
  void reread();
  /// Calls `block` after `setPreview` or `reread` may have changed a housing, until the token ends.
  [[nodiscard]] Token observeChanges(std::function<void()> block);

  /// What is wrong with what the user wrote, one French sentence each, beginning with the file and
  /// line or the variable. Wrong parts are left out, the rest holds.
  [[nodiscard]] std::vector<std::string> problems() const;

 private:
  struct Panel {
    double width;  ///< of the whole panel, in its pixels
    double height;
    view::Rect cutout;  ///< in the same pixels, from the top left
    std::string name;
  };

  void readNotch(const QString& text);
  void readFile();
  void readPanel(const QJsonObject& object, const QByteArray& text);
  [[nodiscard]] std::optional<view::Rect> readCutouts(const QJsonObject& panel,
                                                      const QByteArray& text);
  void complain(const QByteArray& text, const QString& mark, const char* reason);
  void readSystem(const QString& root);
  /// The panel that the kernel's height tells of, if the screen shows all of it.
  [[nodiscard]] std::optional<Panel> kernelPanel(const platform::Screen& screen) const;

  const Sources sources_;
  std::optional<view::Size> preview_;
  std::optional<view::Size> notch_;
  std::vector<Panel> userPanels_;
  std::vector<Panel> knownPanels_;
  /// From the device tree, in pixels; 0 when it names none.
  double kernelNotchHeight_ = 0;
  std::vector<std::string> notchProblems_;
  std::vector<std::string> fileProblems_;
  Listeners<> observers_;
};

}  // namespace valdrix::desktop
