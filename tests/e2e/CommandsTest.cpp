#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QJsonArray>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

int lines(const QString& text) { return static_cast<int>(text.count('\n')); }

TEST(Commands, OneAgentAnswersAndEnds) {
  AgentDesktop desktop;
  const auto lonely = desktop.command({"status"});
  EXPECT_EQ(lonely.exitCode, 1);
  EXPECT_EQ(lines(lonely.errors), 1);

  ASSERT_TRUE(desktop.startAgent());
  EXPECT_EQ(desktop.command({}).exitCode, 0) << "a second start hands over";
  EXPECT_TRUE(desktop.isAgentRunning());
  const auto status = desktop.status();
  EXPECT_TRUE(status["mediaKeys"].toObject()["isTapInstalled"].toBool());
  EXPECT_EQ(status["backends"].toObject()["panelWindows"].toString(), "x11-argb");
  EXPECT_FLOAT_EQ(static_cast<float>(status["volume"].toObject()["level"].toDouble()), 0.5F);

  EXPECT_EQ(desktop.command({"quit"}).exitCode, 0);
  EXPECT_TRUE(waitFor([&] { return !desktop.isAgentRunning(); }));
  EXPECT_EQ(desktop.command({"quit"}).exitCode, 1);
}

TEST(Commands, KeysActAndLevelsShowByCommand) {
  AgentDesktop desktop;
  EXPECT_EQ(desktop.command({"key", "volume-up"}).exitCode, 1) << "nobody runs";
  EXPECT_EQ(desktop.command({"keys", "restore"}).exitCode, 0) << "needs nobody";
  ASSERT_TRUE(desktop.startAgent());
  EXPECT_EQ(desktop.command({"keys", "restore"}).exitCode, 0);
  EXPECT_EQ(desktop.command({"keys", "entrust"}).exitCode, 1) << "there is no desktop";
  // A held key of a shortcut that does not say so.
  for (int i = 0; i < 2; ++i) (void)desktop.command({"key", "mute", "--debounce"});
  EXPECT_TRUE(waitFor([&] { return desktop.status()["volume"].toObject()["isMuted"].toBool(); }));
  EXPECT_EQ(desktop.command({"key", "volume-up"}).exitCode, 0);
  EXPECT_TRUE(desktop.awaitPresentation("volumeHUD"));
  EXPECT_TRUE(desktop.awaitVolume(0.5625));
  EXPECT_EQ(desktop.command({"key", "volume-down", "--fine", "--repeat"}).exitCode, 0);
  EXPECT_TRUE(desktop.awaitVolume(0.546875));
  EXPECT_EQ(desktop.command({"show", "brightness"}).exitCode, 0);
  EXPECT_TRUE(desktop.awaitPresentation("brightnessHUD"));

  desktop.setPreference("volumeHUDEnabled", "false");
  const auto isPassedOn = [&] { return desktop.command({"key", "volume-up"}).exitCode == 1; };
  EXPECT_TRUE(waitFor(isPassedOn));
  const auto hidden = desktop.command({"show", "volume"});
  EXPECT_EQ(hidden.exitCode, 1);
  EXPECT_EQ(lines(hidden.errors), 1);
}

TEST(Commands, HousingsAreTriedAndTold) {
  AgentDesktop desktop;
  desktop.home.write("config/valdrix/housings.json", "[\n3");
  ASSERT_TRUE(desktop.startAgent());
  const auto report = desktop.command({"notch"});
  EXPECT_THAT(report.output.toStdString(),
              AllOf(HasSubstr("1512 × 982 points"), HasSubstr("housings.json:2 : ")));
  const auto isWide = [&](double width) {
    const auto screen = desktop.status()["screens"].toArray()[0].toObject();
    return screen["notchSize"].toObject()["width"].toDouble() == width;
  };
  const auto preview = desktop.launch({"notch", "--preview", "300x40"});
  EXPECT_TRUE(waitFor([&] { return isWide(300); }));
  preview->process().write("310x41\n");
  EXPECT_TRUE(waitFor([&] { return isWide(310); }));
  preview->process().closeWriteChannel();
  EXPECT_TRUE(waitFor([&] { return !preview->isRunning() && isWide(200); }));
  EXPECT_EQ(preview->process().exitCode(), 0);
  EXPECT_THAT(QString(preview->process().readAllStandardOutput()).toStdString(),
              HasSubstr("M 601 0 H 911 V 41 H 601 Z"));
}

TEST(Commands, WordsAreUnderstoodOrRefusedInFrench) {
  const auto run = [](const QStringList& words) {
    return ChildProcess::run(VALDRIX_PROGRAM, words);
  };
  EXPECT_THAT(run({"--version"}).output.toStdString(), StartsWith("valdrix "));
  EXPECT_THAT(run({"--help"}).output.toStdString(), HasSubstr("Utilisation"));
  for (const QStringList& words : {QStringList{"dance"},
                                   {"simulate"},
                                   {"status", "now"},
                                   {"simulate", "file", "--scale", "0"},
                                   {"settings", "7"},
                                   {"settings", "huds", "apropos"},
                                   {"permissions", "huds"},
                                   {"key"},
                                   {"key", "play"},
                                   {"key", "mute", "--loud"},
                                   {"keys"},
                                   {"keys", "eat"},
                                   {"show"},
                                   {"show", "time"},
                                   {"notch", "--preview"},
                                   {"notch", "--preview", "185"},
                                   {"notch", "--preview", "185x0"}}) {
    const auto refused = run(words);
    EXPECT_EQ(refused.exitCode, 2) << words.join(' ').toStdString();
    EXPECT_THAT(refused.errors.toStdString(), StartsWith("valdrix : "));
  }
}

TEST(Commands, WithoutAnXServerOneLineSaysSo) {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DISPLAY", ":9999");
  environment.remove("WAYLAND_DISPLAY");
  environment.remove("QT_QPA_PLATFORM");
  const auto result = ChildProcess::run(VALDRIX_PROGRAM, {}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(lines(result.errors), 1) << result.errors.toStdString();
}

}  // namespace

}  // namespace valdrix::tests
