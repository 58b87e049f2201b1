#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QWidget>

#include "desktop/scenes/LiveValue.h"
#include "view/Menu.h"
#include "view/SettingsScene.h"

class QAction;

namespace valdrix::desktop {

class AboutView;
class FormView;
class SettingsTabBar;

/// The window of a settings scene. A tab's content exists while the window is shown and the tab is
/// selected. Needs a QApplication; main thread only.
class SettingsWindow final : public QWidget {
 public:
  /// `scene` has a tab at least. `onClosed` is called while the window closes and must not destroy
  /// it then.
  SettingsWindow(view::SettingsScene scene, std::function<void()> onClosed);
  ~SettingsWindow() override;
  SettingsWindow(const SettingsWindow&) = delete;
  SettingsWindow& operator=(const SettingsWindow&) = delete;

  [[nodiscard]] std::size_t tab() const;
  void selectTab(std::size_t index);
  /// Shows the window, or brings it to the front.
  void open();
  /// The commands whose shortcuts work in the window.
  void setCommands(const view::Menu& menu);

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
  std::function<void()> onClosed_;
  SettingsTabBar* tabs_;
  QWidget* place_;
  std::vector<std::unique_ptr<QAction>> commands_;
  std::unique_ptr<FormView> form_;
  std::unique_ptr<AboutView> about_;
  std::optional<ShownTab> shown_;
};

}  // namespace valdrix::desktop
