// The settings of GNOME and its kin by the real tool, with a schema and a store of the test's own.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "desktop/shortcuts/GSettings.h"
#include "desktop/shortcuts/GVariantStrings.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;

constexpr auto schemas = R"(<schemalist>
  <schema id="org.test.keys" path="/org/test/keys/">
    <key name="volume-up" type="as"><default>['XF86AudioRaiseVolume', "it's"]</default></key>
    <key name="step" type="i"><default>6</default></key>
  </schema>
  <schema id="org.test.custom">
    <key name="command" type="s"><default>''</default></key>
  </schema>
</schemalist>)";

class GSettingsTest : public testing::Test {
 protected:
  void SetUp() override {
    if (QStandardPaths::findExecutable("gsettings").isEmpty() ||
        QProcess::execute(GLIB_COMPILE_SCHEMAS, {"--version"}) != 0)
      GTEST_SKIP() << "the tools of GSettings are not installed";
    std::ofstream(folder_.filePath("test.gschema.xml").toStdString()) << schemas;
    ASSERT_EQ(QProcess::execute(GLIB_COMPILE_SCHEMAS, {folder_.path()}), 0);
    qputenv("GSETTINGS_SCHEMA_DIR", folder_.path().toLocal8Bit());
    qputenv("GSETTINGS_BACKEND", "keyfile");
    qputenv("XDG_CONFIG_HOME", folder_.path().toLocal8Bit());
    qputenv("LC_ALL", "C");
  }
  std::optional<SettingStore::Value> read(const std::string& setting) {
    std::optional<std::optional<SettingStore::Value>> answer;
    store_.read(setting, [&](const auto& value) { answer = value; });
    EXPECT_FALSE(answer) << "answers before it returns";
    EXPECT_TRUE(tests::waitFor([&] { return answer.has_value(); }));
    return answer.value_or(std::nullopt);
  }
  bool write(const std::string& setting, const SettingStore::Value& value) {
    std::optional<bool> answer;
    store_.write(setting, value, [&](bool isWritten) { answer = isWritten; });
    EXPECT_TRUE(tests::waitFor([&] { return answer.has_value(); }));
    return answer.value_or(false);
  }
  std::string stored() {
    std::ifstream file(folder_.filePath("glib-2.0/settings/keyfile").toStdString());
    return {std::istreambuf_iterator<char>(file), {}};
  }

  QTemporaryDir folder_;
  GSettings store_;
};

TEST_F(GSettingsTest, ReadsAndWritesAsTheToolDoes) {
  const auto text = [](const char* value) { return std::optional(SettingStore::Value(value)); };
  EXPECT_EQ(read("org.test.keys volume-up"), text("['XF86AudioRaiseVolume', \"it's\"]"));
  EXPECT_TRUE(write("org.test.keys volume-up", "@as []"));
  EXPECT_EQ(read("org.test.keys volume-up"), text("@as []"));
  EXPECT_NE(stored().find("volume-up"), std::string::npos);
  // What equals the default is not set, so that it follows the desktop.
  EXPECT_TRUE(write("org.test.keys volume-up", "['XF86AudioRaiseVolume', \"it's\"]"));
  EXPECT_EQ(stored().find("volume-up="), std::string::npos);
  for (const std::string string : {"", "'/opt/a b/x' key \"é\" --fine", "back\\slash\n", "it's"}) {
    const auto written = gvariantText(string);
    EXPECT_TRUE(write("org.test.custom:/org/test/one/ command", written)) << written;
    EXPECT_EQ(read("org.test.custom:/org/test/one/ command"), text(written.c_str()));
    const auto parsed = GVariantStrings::parse(written);
    EXPECT_TRUE(parsed && parsed->strings == std::vector{string}) << written;
  }
  EXPECT_EQ(read("org.test.custom:/org/test/two/ command"), text("''"));
  EXPECT_TRUE(write("org.test.custom:/org/test/one/ command", std::nullopt));
  EXPECT_EQ(stored().find("command="), std::string::npos);
}

TEST_F(GSettingsTest, WhatIsNotThereIsUnreadable) {
  for (const auto* setting : {"org.test.nothing volume-up", "org.test.keys volume-down",
                              "org.test.custom command", "org.test.keys", ""}) {
    EXPECT_EQ(read(setting), std::nullopt) << setting;
    EXPECT_FALSE(write(setting, "@as []")) << setting;
  }
  EXPECT_FALSE(write("org.test.keys step", "'of another type'"));
  EXPECT_EQ(GVariantStrings::parse("6"), std::nullopt);
  qputenv("PATH", "/nowhere");
  GSettings without;
  std::optional<bool> isRead;
  without.read("org.test.keys step", [&](const auto& value) { isRead = value.has_value(); });
  EXPECT_TRUE(tests::waitFor([&] { return isRead.has_value(); }));
  EXPECT_EQ(isRead, false);
}

}  // namespace
}  // namespace valdrix::desktop
