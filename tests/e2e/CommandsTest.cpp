#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

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

TEST(Commands, WordsAreUnderstoodOrRefusedInFrench) {
  const auto run = [](const QStringList& words) {
    return ChildProcess::run(VALDRIX_PROGRAM, words);
  };
  EXPECT_THAT(run({"--version"}).output.toStdString(), StartsWith("valdrix "));
  EXPECT_THAT(run({"--help"}).output.toStdString(), HasSubstr("Utilisation"));
  for (const QStringList& words : {QStringList{"dance"},
                                   {"simulate"},
                                   {"status", "now"},
                                   {"simulate", "file", "--scale", "0"}}) {
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
