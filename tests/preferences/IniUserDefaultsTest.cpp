// What is particular to preferences in a file: other writers, damage, kills, permissions.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <unistd.h>
#include <vector>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "desktop/session/IniUserDefaults.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Unprivileged.h"
#include "tests/support/WaitFor.h"

namespace {

std::atomic<int> syncs = 0;
std::atomic<bool> isDiskHeld = false;

}  // namespace

// Stands in for the system's: counts, and waits as long as the disk is to hang.
extern "C" int fsync(int fd) {
  ++syncs;
  isDiskHeld.wait(true);
  return static_cast<int>(::syscall(SYS_fsync, fd));
}

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;
using tests::waitFor;

void write(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::trunc | std::ios::binary) << text;
}

std::string read(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class IniUserDefaultsTest : public testing::Test {
 protected:
  IniUserDefaultsTest() {
    fs::create_directories(folder_);
    fs::permissions(root_, fs::perms::all);
    fs::permissions(folder_, fs::perms::all);
  }

  IniUserDefaults& open() {
    defaults_ = std::make_unique<IniUserDefaults>(file_);
    finish();
    return *defaults_;
  }
  void finish() { EXPECT_TRUE(defaults_->finishWrites(std::chrono::seconds(10))); }
  void save(std::string_view key, platform::UserDefaults::Value value) {
    defaults_->set(key, std::move(value));
    finish();
  }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_))
      names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }
  using Names = std::vector<std::string>;

  QTemporaryDir temporary_;
  fs::path root_ = temporary_.path().toStdString();
  fs::path folder_ = root_ / "config" / "valdrix";
  fs::path file_ = folder_ / "valdrix.conf";
  std::unique_ptr<IniUserDefaults> defaults_;
};

TEST_F(IniUserDefaultsTest, WhatOthersWroteStaysAsItWas) {
  write(file_, "# mine\n[General]\nfuture=a,b\n[Window]\nx=1\n");
  fs::permissions(file_, fs::perms(0640));
  (void)open();
  save("maxEvents", std::int64_t{5});
  EXPECT_EQ(read(file_), "# mine\n[General]\nfuture=a,b\nmaxEvents=5\n[Window]\nx=1\n");
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0640));
  EXPECT_EQ(files(), Names{"valdrix.conf"});
}

TEST_F(IniUserDefaultsTest, ASlowDiskHoldsUpNobodyAndLosesNothing) {
  using std::chrono::seconds;
  auto& defaults = open();
  syncs = 0;
  for (std::int64_t i = 1; i <= 40; ++i) defaults.set("a", i);
  finish();
  EXPECT_EQ(syncs, 2) << "one write: the file and its folder";
  EXPECT_EQ(read(file_), "[General]\na=40\n");

  isDiskHeld = true;
  defaults.set("a", std::int64_t{41});
  ASSERT_TRUE(waitFor([] { return syncs == 3; }));
  write(file_, "# mine\nb=1\n");
  EXPECT_EQ(defaults.integerForKey("a"), 41);
  EXPECT_EQ(defaults.integerForKey("b"), 1);
  isDiskHeld = false;
  isDiskHeld.notify_all();
  finish();
  EXPECT_EQ(read(file_), "# mine\nb=1\na=41\n");

  isDiskHeld = true;
  defaults.set("a", std::int64_t{42});
  const auto start = std::chrono::steady_clock::now();
  defaults_.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, seconds(4));
  isDiskHeld = false;
  isDiskHeld.notify_all();
  EXPECT_TRUE(waitFor([&] { return read(file_) == "# mine\nb=1\na=42\n"; }));
}

TEST_F(IniUserDefaultsTest, ADamagedFileIsSetAsideAtTheStart) {
  struct Case {
    std::string name;
    std::string content;
    std::int64_t survivor;  ///< what "a" reads as; 7 is the registered default
  };
  const Case cases[] = {
      {"cut off", "[General]\na=1\nhudDur", 1},
      {"a line of junk", "<<<<<<< HEAD\n[General]\na=2\n", 2},
      {"NUL bytes", std::string("[General]\na=3\n\0\0\0\0", 18), 7},
      {"junk only",
       "\x7F"
       "ELF\x02\x01\x01\n",
       7},
  };
  Names expectedFiles{"valdrix.conf"};
  for (const auto& [name, content, survivor] : cases) {
    write(file_, content);
    auto& defaults = open();
    defaults.registerDefaults({{"a", std::int64_t{7}}});
    EXPECT_EQ(defaults.integerForKey("a"), survivor) << name;
    expectedFiles.push_back("valdrix.conf.broken-" + std::to_string(expectedFiles.size()));
    EXPECT_EQ(read(folder_ / expectedFiles.back()), content) << name;
    save("b", true);
    EXPECT_EQ(files(), expectedFiles) << name;
    EXPECT_TRUE(open().boolForKey("b")) << name;
    EXPECT_EQ(open().integerForKey("a"), survivor == 7 ? 0 : survivor) << name;
  }
}

TEST_F(IniUserDefaultsTest, AFileOfAbsurdSizeIsSetAsideUnread) {
  write(file_, "a=1\n");
  fs::resize_file(file_, std::uintmax_t{1} << 40);
  EXPECT_EQ(open().integerForKey("a"), 0);
  EXPECT_EQ(files(), Names{"valdrix.conf.broken-1"});
}

TEST_F(IniUserDefaultsTest, AFileDamagedMeanwhileStaysInPlaceUntilTheNextWrite) {
  auto& defaults = open();
  save("a", std::int64_t{1});
  write(file_, "[General]\na=2\nhalf a li");
  EXPECT_EQ(defaults.integerForKey("a"), 2);
  EXPECT_EQ(files(), Names{"valdrix.conf"});
  save("b", std::int64_t{3});
  EXPECT_EQ(read(folder_ / "valdrix.conf.broken-1"), "[General]\na=2\nhalf a li");
  EXPECT_EQ(read(file_), "[General]\na=2\nb=3\n");
}

TEST_F(IniUserDefaultsTest, AKilledWriterLeavesWholeValuesAndNothingElse) {
  for (int round = 0; round < 12; ++round) {
    tests::ChildProcess writer(PREFERENCE_WRITER, {QString::fromStdString(file_.string())});
    qint64 written = 0;
    const int target = 3 + round;
    ASSERT_TRUE(waitFor([&] {
      written += writer.process().readAllStandardOutput().size();
      return written >= target;
    }));
    writer.kill();
    const auto value = open().stringForKey("run").value_or("");
    ASSERT_GE(value.size(), 1000U);
    EXPECT_EQ(value.size() % 1000, 0U);
    EXPECT_EQ(value, std::string(value.size(), value.front()));
    ASSERT_EQ(files(), Names{"valdrix.conf"});
  }
}

TEST_F(IniUserDefaultsTest, ChangesFromOutsideAreReadAtOnceAndReported) {
  auto& defaults = open();
  std::int64_t noticed = -1;
  const Token token = defaults.observeChanges([&] { noticed = defaults.integerForKey("a"); });
  const auto expectNoticed = [&](std::int64_t value) {
    EXPECT_TRUE(waitFor([&] { return noticed == value; }));
    // Lest a notice that is still queued stand in for the next one.
    QCoreApplication::processEvents();
  };
  save("a", std::int64_t{1});
  expectNoticed(1);

  std::int64_t next = 1;
  const auto expectChange = [&](const char* how, auto change) {
    SCOPED_TRACE(how);
    change("[General]\na=" + std::to_string(++next) + "\n");
    expectNoticed(next);
    change("[General]\na=" + std::to_string(++next) + "\n");
    EXPECT_EQ(defaults.integerForKey("a"), next) << "without a turn of the loop";
  };
  const auto replace = [&](const std::string& text) {
    write(folder_ / "swap", text);
    fs::rename(folder_ / "swap", file_);
  };
  expectChange("in place", [&](const std::string& text) { write(file_, text); });
  expectChange("replaced", replace);
  expectChange("replaced again", replace);
  expectChange("removed and made anew", [&](const std::string& text) {
    fs::remove(file_);
    write(file_, text);
  });
  fs::remove_all(folder_.parent_path());
  expectNoticed(0);
  save("a", std::int64_t{99});
  expectNoticed(99);
  EXPECT_EQ(read(file_), "[General]\na=99\n") << "in a folder made anew";
  expectChange("in the new folder", replace);
}

TEST_F(IniUserDefaultsTest, ALinkStaysALinkAndItsTargetIsWatched) {
  const auto dotfiles = root_ / "dotfiles";
  fs::create_directory(dotfiles);
  write(dotfiles / "conf", "a=1\n");
  fs::create_symlink("../../dotfiles/conf", file_);
  auto& defaults = open();
  save("b", std::int64_t{2});
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(read(dotfiles / "conf"), "a=1\nb=2\n");

  int notices = 0;
  const Token token = defaults.observeChanges([&] { ++notices; });
  ASSERT_TRUE(waitFor([&] { return notices == 1; }));
  write(dotfiles / "new", "a=3\n");
  fs::rename(dotfiles / "new", dotfiles / "conf");
  EXPECT_TRUE(waitFor([&] { return notices == 2; }));
  EXPECT_EQ(defaults.integerForKey("a"), 3);

  write(dotfiles / "conf", "junk\n");
  (void)open();
  save("a", std::int64_t{4});
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(read(dotfiles / "conf.broken-1"), "junk\n");
  EXPECT_EQ(read(file_), "[General]\na=4\n");

  fs::remove(dotfiles / "conf");
  (void)open();
  save("a", std::int64_t{5});
  EXPECT_TRUE(fs::is_symlink(file_)) << "also a dangling one";
  EXPECT_EQ(read(dotfiles / "conf"), "[General]\na=5\n");
}

TEST_F(IniUserDefaultsTest, WhatCannotBeWrittenCountsForThisRun) {
  struct Case {
    const char* name;
    fs::path path;
    fs::perms before;
    fs::perms after;
  };
  const fs::perms readOnly = fs::perms(0555);
  const Case cases[] = {
      {"folder", folder_, readOnly, fs::perms::all},
      {"file", file_, fs::perms(0444), fs::perms(0666)},
      {"unreadable file", file_, fs::perms::none, fs::perms(0666)},
  };
  for (const auto& [name, path, before, after] : cases) {
    SCOPED_TRACE(name);
    write(file_, "[General]\na=1\n");
    fs::permissions(path, before);
    {
      const tests::Unprivileged unprivileged;
      auto& defaults = open();
      int failures = 0;
      defaults.setOnFailure([&] { ++failures; });
      for (const std::int64_t value : {3, 2}) save("a", value);
      EXPECT_EQ(defaults.integerForKey("a"), 2);
      QCoreApplication::processEvents();
      EXPECT_EQ(failures, 1) << "which the user is told of once";
      defaults.setOnFailure({});
    }
    EXPECT_EQ(read(file_), "[General]\na=1\n");
    EXPECT_EQ(files(), Names{"valdrix.conf"});
    fs::permissions(path, after);
    fs::permissions(file_, fs::perms(0666));
    save("b", std::int64_t{3});
    EXPECT_EQ(read(file_), "[General]\na=2\nb=3\n") << "and goes along with the next write";
  }
}

TEST_F(IniUserDefaultsTest, WhatIsNoFileIsLeftAlone) {
  const auto expectMemoryOnly = [&](const char* what) {
    SCOPED_TRACE(what);
    auto& defaults = open();
    EXPECT_EQ(defaults.stringForKey("a"), std::nullopt);
    save("a", std::string("x"));
    EXPECT_EQ(defaults.stringForKey("a"), "x");
    EXPECT_EQ(files(), Names{"valdrix.conf"});
  };
  fs::create_directory(file_);
  expectMemoryOnly("a folder");
  fs::remove(file_);
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  expectMemoryOnly("a pipe");
  fs::remove(file_);
  fs::create_symlink("valdrix.conf", file_);
  expectMemoryOnly("a link to itself");
  fs::remove(file_);
  fs::create_symlink("/dev/zero", file_);
  expectMemoryOnly("an endless device");
}

}  // namespace
}  // namespace valdrix::desktop
