#include "desktop/session/TerminationSignals.h"

#include <csignal>
#include <pthread.h>
#include <unistd.h>
#include <utility>

#include <QSocketNotifier>
#include <sys/signalfd.h>

namespace valdrix::desktop {

namespace {

sigset_t terminationSet() {
  sigset_t set{};
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  sigaddset(&set, SIGHUP);
  return set;
}

}  // namespace

TerminationSignals::TerminationSignals() {
  const sigset_t set = terminationSet();
  if (pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0) return;
  signals_ = UniqueFd(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
  if (!signals_) pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void TerminationSignals::watch(std::function<void()> onTerminate) {
  if (!signals_) return;
  notifier_ = std::make_unique<QSocketNotifier>(signals_.get(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this, block = std::move(onTerminate)] {
                     signalfd_siginfo arrived{};
                     while (read(signals_.get(), &arrived, sizeof arrived) == sizeof arrived)
                       block();
                   });
}

TerminationSignals::~TerminationSignals() {
  notifier_.reset();
  if (!signals_) return;
  const sigset_t set = terminationSet();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace valdrix::desktop
