#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <QWidget>

#include "desktop/scenes/LiveValue.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

class AboutView;
class FormView;
class SettingsTabBar;

/// Asks the window system, by its number for a window that is shown, to bring that to the front.
using BringToFront = std::function<void(std::uint64_t window)>;

/// The window of a settings scene. A tab's content exists while the window is shown and the tab is
/// selected. Needs a QApplication; main thread only.
class SettingsWindow final : public QWidget {
 public:
  struct Handlers {
    /// Called while the window closes; it must not destroy it then.
    std::function<void()> closed;
    /// Brings the window to the front by what Qt has no call for. May be empty.
    BringToFront bringToFront{};
  };

  /// `scene` has a tab at least.
  SettingsWindow(view::SettingsScene scene, Handlers handlers);
  ~SettingsWindow() override;
  SettingsWindow(const SettingsWindow&) = delete;
  SettingsWindow& operator=(const SettingsWindow&) = delete;

  [[nodiscard]] std::size_t tab() const;
  void selectTab(std::size_t index);
  /// Shows the window, or brings it to the front.
  void open();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// A tab that is on screen.
  struct ShownTab {
    std::unique_ptr<view::TabView> view;
    std::unique_ptr<LiveValue<view::TabContent>> content;
  };

  void addKeys();
  void stepTab(int by);
  void beginTab();
  void endTab();
  void show(const view::TabContent& content);
  template <class View, class Content, class Context>
  void show(std::unique_ptr<View>& shown, const Content& content, const Context& context);

  view::SettingsScene scene_;
  Handlers handlers_;
  SettingsTabBar* tabs_;
  QWidget* place_;
  std::unique_ptr<FormView> form_;
  std::unique_ptr<AboutView> about_;
  std::optional<ShownTab> shown_;
};

}  // namespace valdrix::desktop
