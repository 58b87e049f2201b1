// The program as an entry in the folders of what is started at login.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>

#include <QTemporaryDir>

#include "desktop/session/DesktopEntry.h"
#include "desktop/session/XdgLoginItem.h"
#include "tests/support/Unprivileged.h"

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;
using enum platform::LoginItem::Status;
/// What a file holds; nothing when there is none.
using Text = std::optional<std::string>;

class XdgLoginItemTest : public testing::Test {
 protected:
  XdgLoginItemTest() {
    qputenv("XDG_CONFIG_HOME", folder_.filePath("user").toUtf8());
    qputenv("XDG_CONFIG_DIRS", folder_.filePath("system").toUtf8());
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    item_.emplace("/bin/sh");
  }
  [[nodiscard]] fs::path file(const char* folder) const {
    return fs::path(folder_.path().toStdString()) / folder / "autostart" / "valdrix.desktop";
  }
  void put(const char* folder, const Text& text) const {
    fs::remove_all(file(folder));
    fs::create_directories(file(folder).parent_path());
    if (text) std::ofstream(file(folder)) << *text;
  }
  [[nodiscard]] Text user() const {
    std::ifstream stream(file("user"));
    if (!stream) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

  QTemporaryDir folder_;
  std::optional<XdgLoginItem> item_;
};

const std::string head = "[Desktop Entry]\nType=Application\n";
const std::string own = head + "Name=valdrix\nIcon=valdrix\nExec=/bin/sh\n";
const std::string packaged = head + "Name=valdrix\nExec=sh\nX-Package=1\n";
const std::string wordy =
    "# mine\n[Desktop Entry]\nType = Application\nName[fr]=à moi\nExec=env A=1 "
    "sh\n\n[More]\nHidden=true\n";

/// `text` with `line` at the end of its first group.
std::string with(std::string text, const std::string& line) {
  const auto end = text.find("\n\n[");
  return text.insert(end == std::string::npos ? text.size() : end + 1, line + '\n');
}

TEST_F(XdgLoginItemTest, TheToggleShowsAndSetsWhatTheDesktopDoes) {
  const std::string off = "Hidden=true", disabled = "X-GNOME-Autostart-enabled=false";
  const auto gone = head + "X-Mine=1\nExec=/gone %u\n";
  const auto elsewhere = with(wordy, "OnlyShowIn=KDE;");
  const auto notHere = with(wordy, "NotShowIn=KDE;GNOME;");
  const struct {
    Text user, system;
    platform::LoginItem::Status status;
    Text whenOn, whenOff;
  } rows[]{
      {{}, {}, notRegistered, own, {}},
      {own, {}, enabled, own, {}},
      {with(own, off), {}, requiresApproval, own, {}},
      {{}, packaged, enabled, {}, with(own, off)},
      {with(own, off), packaged, requiresApproval, {}, with(own, off)},
      {{}, head + "Exec=/gone\n", notFound, own, with(own, off)},
      {wordy, {}, enabled, wordy, with(wordy, off)},
      {with(wordy, off), packaged, requiresApproval, with(wordy, "Hidden=false"), with(wordy, off)},
      {with(wordy, disabled),
       {},
       requiresApproval,
       with(wordy, "X-GNOME-Autostart-enabled=true"),
       with(with(wordy, disabled), off)},
      {elsewhere, {}, requiresApproval, with(wordy, "OnlyShowIn=KDE;ubuntu"), with(elsewhere, off)},
      {notHere, {}, requiresApproval, with(wordy, "NotShowIn=KDE"), with(notHere, off)},
      {gone, {}, notFound, head + "X-Mine=1\nExec=/bin/sh\n", with(gone, off)},
      {"garbage",
       {},
       notFound,
       "garbage\n\n" + head + "Exec=/bin/sh\n",
       "garbage\n\n[Desktop Entry]\nHidden=true\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.user.value_or("no entry") + '|' + row.system.value_or("no package"));
    put("system", row.system);
    put("user", row.user);
    EXPECT_EQ(item_->status(), row.status);
    EXPECT_TRUE(item_->registerAtLogin());
    EXPECT_EQ(item_->status(), enabled);
    EXPECT_EQ(user(), row.whenOn);
    put("user", row.user);
    EXPECT_TRUE(item_->unregisterAtLogin());
    EXPECT_NE(item_->status(), enabled);
    EXPECT_EQ(user(), row.whenOff);
  }
}

TEST_F(XdgLoginItemTest, AProgramsPathIsTakenAsItIs) {
  const auto program = folder_.filePath("a $b \"c\" 100% \\ `d`");
  fs::copy_file("/bin/sh", program.toStdString());
  XdgLoginItem odd(program);
  ASSERT_TRUE(odd.registerAtLogin());
  EXPECT_EQ(odd.status(), enabled);
  const auto entry = DesktopEntry::read(QString::fromStdString(file("user").string()));
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->command(), QStringList(program));
}

TEST_F(XdgLoginItemTest, WhatCannotBeChangedStaysAndShowsAsItIs) {
  put("user", own);
  const auto folder = file("user").parent_path();
  // Others may look in, but not write.
  fs::permissions(folder_.path().toStdString(), fs::perms(0755));
  fs::permissions(folder, fs::perms(0555));
  {
    const tests::Unprivileged nobody;
    EXPECT_FALSE(item_->unregisterAtLogin());
    EXPECT_EQ(item_->status(), enabled);
  }
  EXPECT_EQ(user(), own);
  fs::permissions(folder, fs::perms(0755));
  fs::remove(file("user"));
  fs::create_directory(file("user"));
  EXPECT_FALSE(item_->registerAtLogin());
  EXPECT_FALSE(item_->unregisterAtLogin());
  EXPECT_EQ(item_->status(), notFound);
}

}  // namespace
}  // namespace valdrix::desktop
