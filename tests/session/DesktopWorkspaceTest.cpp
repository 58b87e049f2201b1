// Links and the programs that open them, as argument vectors.

#include <clocale>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sys/wait.h>

#include "desktop/session/QtRunLoop.h"
#include "desktop/workspace/DesktopWorkspace.h"
#include "tests/session/PrivateBus.h"
#include "tests/session/RecordingService.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

/// A user's programs: scripts on a PATH of their own that write down how they were started.
class Programs {
 public:
  Programs() {
    for (const auto* folder : {"bin", "data/applications", "config", "calls", "none"})
      QDir(folder_.path()).mkpath(folder);
    qputenv("PATH", (folder_.path() + "/bin:/usr/bin:/bin").toUtf8());
    qputenv("HOME", folder_.path().toUtf8());
    qputenv("XDG_DATA_HOME", folder_.filePath("data").toUtf8());
    qputenv("XDG_CONFIG_HOME", folder_.filePath("config").toUtf8());
    for (const auto* variable : {"XDG_DATA_DIRS", "XDG_CONFIG_DIRS"})
      qputenv(variable, folder_.filePath("none").toUtf8());
    qputenv("XDG_CURRENT_DESKTOP", "Some:GNOME");
    std::setlocale(LC_TIME, "C");
  }

  [[nodiscard]] std::filesystem::path commands() const {
    return folder_.filePath("config/programs.conf").toStdString();
  }
  void write(const QString& path, const QString& text) const {
    QFile file(folder_.filePath(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
  }
  /// An executable that notes its arguments, one a line, and what it inherited.
  void install(const QString& program) const {
    write("bin/" + program,
          "#!/bin/sh\n"
          "n=$(mktemp " +
              folder_.filePath("calls/XXXXXX") +
              ")\n"
              "{ printf '%s\\n' \"${0##*/}\" \"$@\"; } >$n.new\n"
              "{ ls /proc/self/fd; grep SigBlk /proc/self/status; } >" +
              folder_.filePath("inherited") +
              "\n"
              "mv $n.new $n.done\n");
    QFile::setPermissions(folder_.filePath("bin/" + program), QFile::ReadOwner | QFile::ExeOwner);
  }
  void installEntry(const QString& name, const QString& exec, const QString& more = {}) const {
    write("data/applications/" + name + ".desktop",
          "[Desktop Entry]\nType=Application\nName=A name\nExec=" + exec + '\n' + more);
  }
  /// How the next program was started; empty when none was.
  std::vector<std::string> nextCall() const {
    const QDir calls(folder_.filePath("calls"));
    QStringList names;
    (void)tests::waitFor([&] { return !(names = calls.entryList({"*.done"})).isEmpty(); });
    if (names.isEmpty()) return {};
    QFile file(calls.filePath(names[0]));
    if (!file.open(QIODevice::ReadOnly)) return {};
    std::vector<std::string> words;
    for (const auto& line : file.readAll().chopped(1).split('\n'))
      words.push_back(line.toStdString());
    file.remove();
    return words;
  }
  [[nodiscard]] QString inherited() const {
    QFile file(folder_.filePath("inherited"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QString();
  }

 private:
  QTemporaryDir folder_;
};

class DesktopWorkspaceTest : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  Programs programs;
  QtRunLoop runLoop;
  tests::PrivateBus bus;
  SessionBus session{runLoop};
  DesktopWorkspace workspace{
      session,
      {.findEvent = [](std::string_view identifier) -> std::optional<DesktopWorkspace::EventPlace> {
        if (identifier == "gone") return std::nullopt;
        return DesktopWorkspace::EventPlace{QDate(2026, 11, 20),
                                            identifier.starts_with("src:") ? "src" : "/folder"};
      }},
      programs.commands()};
};

TEST_F(DesktopWorkspaceTest, KnownProgramsAreAskedInTheirOwnWay) {
  const std::string hostile = "src:-x; \"$(id)\" %u %41&'";
  const struct {
    const char* program;
    const char* url;
    Words arguments;
  } rows[]{
      {"gnome-calendar", "ical://date/20261118", {"--date=11/18/26"}},
      {"gnome-calendar", "ical://ekevent/src:uid:1", {"--uuid=src:uid:1"}},
      {"gnome-calendar", "ical://ekevent/uid@folder", {"--date=11/20/26"}},
      {"gnome-calendar", "ical://ekevent/gone", {}},
      {"evolution", "ical://date/20261118", {"calendar:///?startdate=20261118"}},
      {"evolution", "ical://ekevent/src:u&1", {"calendar:///?source-uid=src&comp-uid=u%261"}},
      {"evolution", "ical://ekevent/src:é=", {"calendar:///?source-uid=src&comp-uid=%C3%A9%3D"}},
      {"korganizer", "ical://ekevent/src:1", {}},
      {"thunderbird", "ical://date/20261118", {"-calendar"}},
      {"thunderbird", "ical://ekevent/src:1", {"-calendar"}},
      {"other", "ical://date/20261118", {"--show all"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.program) + ' ' + row.url);
    programs.install(row.program);
    const QString program = row.program;
    programs.installEntry("x-" + program,
                          program == "other" ? "other \"--show all\" %F" : program + " %U");
    programs.write(
        "config/gnome-mimeapps.list",
        "[Default Applications]\ntext/calendar=none.desktop;x-" + program + ".desktop\n");
    EXPECT_FALSE(workspace.open("")) << "parts a day from an event";
    EXPECT_TRUE(workspace.open(row.url));
    auto expected = row.arguments;
    expected.insert(expected.begin(), row.program);
    EXPECT_EQ(programs.nextCall(), expected);
  }
  programs.write("config/gnome-mimeapps.list", "");
  programs.installEntry("org.gnome.Calendar", "gnome-calendar");
  EXPECT_TRUE(workspace.open("ical://ekevent/" + hostile));
  EXPECT_EQ(programs.nextCall(), (Words{"gnome-calendar", "--uuid=" + hostile}))
      << "the first known one that is installed";
}

TEST_F(DesktopWorkspaceTest, TheDayOfAnOccurrenceIsNotReplacedByAnotherOccurrences) {
  programs.install("thunderbird");
  programs.installEntry("thunderbird", "thunderbird");
  EXPECT_TRUE(workspace.open("ical://date/20261118"));
  EXPECT_TRUE(workspace.open("ical://ekevent/uid@folder")) << "its day is shown already";
  EXPECT_EQ(programs.nextCall(), (Words{"thunderbird", "-calendar"}));
  programs.install("gnome-calendar");
  programs.installEntry("org.gnome.Calendar", "gnome-calendar");
  EXPECT_TRUE(workspace.open("ical://date/20261118"));
  EXPECT_EQ(programs.nextCall(), (Words{"gnome-calendar", "--date=11/18/26"}));
  EXPECT_TRUE(workspace.open("ical://ekevent/src:1"));
  EXPECT_EQ(programs.nextCall(), (Words{"gnome-calendar", "--uuid=src:1"}));
  programs.install("mine");
  programs.write("config/programs.conf", "showEvent=mine {identifier} {date}");
  EXPECT_FALSE(workspace.open("ical://date/20261118")) << "days alone are not shown";
  EXPECT_TRUE(workspace.open("ical://ekevent/src:1"));
  EXPECT_EQ(programs.nextCall(), (Words{"mine", "src:1", "2026-11-18"}));
  EXPECT_TRUE(workspace.open("ical://ekevent/src:1"));
  EXPECT_EQ(programs.nextCall(), (Words{"mine", "src:1", "2026-11-20"}));
}

TEST_F(DesktopWorkspaceTest, TheUsersOwnCommandsWinAndDataStayData) {
  programs.install("mine");
  programs.install("gnome-calendar");
  programs.installEntry("org.gnome.Calendar", "gnome-calendar");
  const std::string longIdentifier(10'000, 'x');
  const std::string quotes = "a b' \"{date} $(id) %s\\";
  const struct {
    const char* commands;
    std::string url;
    Words call;
  } rows[]{
      {"showDay=mine --day='{year}/{month}/{day}' \"a b\"",
       "ical://date/20260203",
       {"mine", "--day=2026/02/03", "a b"}},
      {"showDay=mine {date}", "ical://ekevent/uid", {"mine", "2026-11-20"}},
      {"showEvent=mine {identifier}", "ical://ekevent/" + quotes, {"mine", quotes}},
      {"showEvent=mine -e{identifier} {date}",
       "ical://ekevent/" + longIdentifier,
       {"mine", "-e" + longIdentifier, "2026-11-20"}},
      // What would be taken for an option is not handed over as one.
      {"showEvent=mine {identifier}\nshowDay=mine {date}",
       "ical://ekevent/--delete",
       {"mine", "2026-11-20"}},
      // Nor does it choose the program.
      {"showEvent={identifier}\nshowDay=mine {date}",
       "ical://ekevent/gnome-calendar",
       {"mine", "2026-11-20"}},
      {"showEvent=./{identifier} {date}\nshowDay='{day}'",
       "ical://ekevent/src:1",
       {"gnome-calendar", "--uuid=src:1"}},
      {"showEvent=mine -- {identifier}", "ical://ekevent/--delete", {"mine", "--", "--delete"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.commands);
    programs.write("config/programs.conf", row.commands);
    EXPECT_FALSE(workspace.open("")) << "parts a day from an event";
    EXPECT_TRUE(workspace.open(row.url));
    EXPECT_EQ(programs.nextCall(), row.call);
  }
}

TEST_F(DesktopWorkspaceTest, LinksGoToTheBrowserAndNonsenseToNobody) {
  programs.install("browser");
  programs.installEntry("sub-browser", "browser --name %c --open=%u %%f %i",
                        "TryExec=browser\nName=Second name\n");
  programs.write("config/mimeapps.list",
                 "[Added Associations]\nx-scheme-handler/https=sub-browser.desktop;\n");
  const std::string url = "https://example.org/?q='%20\"&x=$(id)";
  // Files and signals that are this process's own.
  const int leaked = ::dup2(2, 77);
  sigset_t blocked{};
  sigset_t before{};
  sigfillset(&blocked);
  pthread_sigmask(SIG_SETMASK, &blocked, &before);
  EXPECT_TRUE(workspace.open(url));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  ::close(leaked);
  EXPECT_EQ(programs.nextCall(), (Words{"browser", "--name", "A name", "--open=" + url, "%f"}));
  // "ls" reads the folder by 3.
  EXPECT_EQ(programs.inherited().toStdString(), "0\n1\n2\n3\nSigBlk:\t0000000000000000\n");
  EXPECT_TRUE(tests::waitFor([] { return ::waitpid(-1, nullptr, WNOHANG) < 0; })) << "a zombie";

  programs.install("gnome-calendar");
  programs.installEntry("org.gnome.Calendar", "gnome-calendar");
  for (const std::string nonsense :
       {"", "ical://", "ical://date/", "ical://date/20261318", "ical://date/2026-11-18",
        "ical://ekevent/", "ical://ekevent/a\nb", "ical://ekevent/a\x7F", "http://a b",
        "http://no.handler", "file:///etc/passwd", "x-apple.systempreferences:a"})
    EXPECT_FALSE(workspace.open(nonsense)) << nonsense;
  EXPECT_FALSE(workspace.open("ical://ekevent/" + std::string(100'000, 'x')));
  EXPECT_FALSE(workspace.open(std::string_view("ical://ekevent/a\0b", 18)));
}

TEST_F(DesktopWorkspaceTest, KOrganizerIsToldTheDayWhenItIsThere) {
  ASSERT_TRUE(bus.start());
  ASSERT_TRUE(tests::waitFor([&] { return session.connection().has_value(); }));
  programs.install("korganizer");
  programs.installEntry("org.kde.korganizer", "korganizer");
  EXPECT_TRUE(workspace.open("ical://date/20261118"));
  EXPECT_EQ(programs.nextCall(), Words{"korganizer"});
  tests::RecordingService korganizer("org.kde.korganizer");
  ASSERT_TRUE(tests::waitFor([&] { return !korganizer.calls.empty(); }));
  EXPECT_EQ(korganizer.calls[0].member(), "showDate");
  EXPECT_EQ(korganizer.calls[0].signature(), "(iii)");
}

}  // namespace
}  // namespace valdrix::desktop
