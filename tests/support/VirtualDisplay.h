#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QImage>
#include <QPoint>
#include <QProcessEnvironment>
#include <QSize>
#include <xcb/xcb.h>

#include "tests/support/SpawnedProgram.h"

namespace valdrix::tests {

/// A real X server without a monitor, on a display number of its own, that ends with this object.
/// Needs no event loop and no QCoreApplication. Positions are device pixels from the top left.
///
/// Input goes through the XTEST extension, so that programs cannot tell it from a mouse and a
/// keyboard; every call returns after the server has handled it.
class VirtualDisplay {
 public:
  explicit VirtualDisplay(QSize size = {1512, 982});
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  /// Whether the server came up and is still there.
  [[nodiscard]] bool isRunning();
  /// What DISPLAY must say, such as ":71".
  [[nodiscard]] const std::string& name() const { return name_; }
  /// This process's environment with the display's variables.
  [[nodiscard]] QProcessEnvironment environment() const;
  [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] QSize size() const;

  /// Starts a window manager and waits until it manages. Whether it does.
  bool startWindowManager();
  void stopWindowManager();
  /// Starts a compositing manager and waits until it composites. Whether it does.
  bool startCompositor();
  /// Ends it and waits until the display knows.
  void stopCompositor();
  [[nodiscard]] bool hasCompositor() const;

  void movePointer(QPoint to);
  [[nodiscard]] QPoint pointer() const;
  /// Buttons: 1 left, 2 middle, 3 right, 4 and 5 the wheel.
  void press(std::uint8_t button = 1);
  void release(std::uint8_t button = 1);
  void click(std::uint8_t button = 1);

  /// The key that makes this X keysym (such as 0x1008FF13 for volume up). False: no key does.
  bool pressKey(xcb_keysym_t keysym);
  bool releaseKey(xcb_keysym_t keysym);
  bool tapKey(xcb_keysym_t keysym);

  /// What a monitor would show now.
  [[nodiscard]] QImage screenshot() const;

  /// Runs a program that talks to this display to its end (ten seconds at most); its exit code, or
  /// -1.
  int run(std::vector<std::string> arguments);

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  [[nodiscard]] std::vector<std::string> variables() const;
  [[nodiscard]] xcb_atom_t atom(const std::string& atomName) const;
  [[nodiscard]] bool hasWindowManager() const;
  [[nodiscard]] bool takesWindowsIn() const;
  /// Looks at `condition` anew after each event of the server's, for so long at most.
  [[nodiscard]] bool await(const std::function<bool()>& condition, int milliseconds = 10000) const;
  /// True if an event came within that time.
  [[nodiscard]] bool awaitsEvent(int milliseconds) const;
  /// Until no window comes, goes or moves any more.
  [[nodiscard]] bool awaitRest() const;
  [[nodiscard]] bool paintsWindows() const;
  void fake(std::uint8_t type, std::uint8_t detail, QPoint at = {});
  bool fakeKey(std::uint8_t type, xcb_keysym_t keysym);

  std::string home_;
  std::unique_ptr<SpawnedProgram> server_;
  std::string name_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  std::unique_ptr<SpawnedProgram> windowManager_;
  std::unique_ptr<SpawnedProgram> compositor_;
};

}  // namespace valdrix::tests
