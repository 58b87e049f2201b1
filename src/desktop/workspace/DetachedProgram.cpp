#include "desktop/workspace/DetachedProgram.h"

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <sys/syscall.h>
#include <sys/wait.h>

#include "desktop/session/UniqueFd.h"

namespace valdrix::desktop {

namespace {

/// What a new program starts with.
class FreshStart {
 public:
  FreshStart() {
    posix_spawn_file_actions_init(&files_);
    const auto home = QFile::encodeName(QDir::homePath());
    if (QDir::home().exists()) posix_spawn_file_actions_addchdir_np(&files_, home);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      posix_spawn_file_actions_addopen(&files_, standard, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);

    sigset_t none{};
    sigset_t all{};
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  }
  ~FreshStart() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }
  FreshStart(const FreshStart&) = delete;
  FreshStart& operator=(const FreshStart&) = delete;

  /// The new process; -1 when it could not be started.
  [[nodiscard]] pid_t spawn(const QStringList& command) const {
    std::vector<std::string> words;
    words.reserve(static_cast<std::size_t>(command.size()));
    for (const auto& word : command) words.push_back(word.toStdString());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t pid = -1;
    const bool isStarted = ::posix_spawnp(&pid, words[0].c_str(), &files_, &attributes_,
                                          arguments.data(), ::environ) == 0;
    return isStarted ? pid : -1;
  }

 private:
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

/// Takes the dead process off the kernel's list when it ends. The application owns the watch.
void awaitEnd(pid_t pid) {
  auto process = std::make_shared<UniqueFd>(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
  if (!*process) return;
  auto* const end =
      new QSocketNotifier(process->get(), QSocketNotifier::Read, QCoreApplication::instance());
  QObject::connect(end, &QSocketNotifier::activated, end, [pid, process, end] {
    ::waitpid(pid, nullptr, WNOHANG);
    end->setEnabled(false);
    end->deleteLater();
  });
}

}  // namespace

// QProcess would hand on blocked signals and whatever files others left open.
bool startDetached(const QStringList& command) {
  if (command.isEmpty()) return false;
  const pid_t pid = FreshStart().spawn(command);
  if (pid < 0) return false;
  awaitEnd(pid);
  return true;
}

}  // namespace valdrix::desktop
