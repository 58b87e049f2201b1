#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "desktop/x11/X11ThemeName.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {
namespace {

using desktop::X11Connection;
using Bytes = std::vector<std::uint8_t>;

/// A number, a colour and the theme's name as a manager publishes them, in one of the byte orders.
Bytes settings(const std::string& theme, bool isBigEndian) {
  Bytes bytes;
  const auto number = [&](std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
      bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (isBigEndian ? size - 1 - i : i))));
  };
  const auto text = [&](const std::string& value) {
    bytes.insert(bytes.end(), value.begin(), value.end());
    bytes.resize((bytes.size() + 3) / 4 * 4);
  };
  const auto setting = [&](std::uint32_t type, const std::string& name) {
    number(type, 1);
    number(0, 1);
    number(static_cast<std::uint32_t>(name.size()), 2);
    text(name);
    number(1, 4);
  };
  bytes = {static_cast<std::uint8_t>(isBigEndian ? 1 : 0), 0, 0, 0};
  number(7, 4);
  number(3, 4);
  setting(0, "Net/DoubleClickTime");
  number(400, 4);
  setting(2, "Some/Color");
  bytes.resize(bytes.size() + 8);
  setting(1, "Net/ThemeName");
  number(static_cast<std::uint32_t>(theme.size()), 4);
  text(theme);
  return bytes;
}

/// Has the selection of the settings until it ends.
class Manager {
 public:
  explicit Manager(const std::string& theme) : window_(xcb_generate_id(connection_.get())) {
    xcb_create_window(connection_.get(), 0, window_, connection_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    publish(theme);
    xcb_set_selection_owner(connection_.get(), window_, connection_.atom("_XSETTINGS_S0"),
                            XCB_CURRENT_TIME);
    connection_.flush();
  }

  void publish(const std::string& theme) {
    const auto bytes = settings(theme, false);
    const auto property = connection_.atom("_XSETTINGS_SETTINGS");
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, property, property, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
    connection_.flush();
  }

 private:
  X11Connection connection_;
  xcb_window_t window_;
};

TEST(X11ThemeName, FollowsWhoeverManagesTheSettings) {
  X11Connection connection;
  desktop::X11ThemeName theme(connection);
  const auto becomes = [&](const std::string& name) {
    return waitFor([&] { return theme.name() == name; });
  };
  EXPECT_EQ(theme.name(), "");
  auto manager = std::make_unique<Manager>("Adwaita-dark");
  EXPECT_TRUE(becomes("Adwaita-dark"));
  manager->publish("Adwaita");
  EXPECT_TRUE(becomes("Adwaita"));
  auto next = std::make_unique<Manager>("Yaru");
  EXPECT_TRUE(becomes("Yaru"));
  next.reset();
  EXPECT_TRUE(becomes(""));
}

TEST(X11ThemeName, SettingsThatBreakOffSayNothing) {
  for (const bool isBigEndian : {false, true}) {
    const auto whole = settings("Adwaita-dark", isBigEndian);
    EXPECT_EQ(desktop::xsettingsText(whole, "Net/ThemeName"), "Adwaita-dark");
    EXPECT_EQ(desktop::xsettingsText(whole, "Some/Color"), "");
    for (std::size_t size = 0; size < whole.size(); ++size)
      EXPECT_EQ(desktop::xsettingsText(std::span(whole).first(size), "Net/ThemeName"), "") << size;
  }
}

}  // namespace
}  // namespace valdrix::tests
