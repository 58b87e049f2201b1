// Writes preferences until it is killed. Each value is a run of one letter, so that a reader can
// see whether it is whole. Says each time that a value is on disk.

#include <chrono>
#include <cstdio>
#include <string>

#include <QCoreApplication>

#include "desktop/session/IniUserDefaults.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const QCoreApplication application(argc, argv);
  valdrix::desktop::IniUserDefaults defaults(argv[1]);
  for (std::size_t round = 0;; ++round) {
    const char letter = static_cast<char>('a' + round % 26);
    defaults.set("run", std::string(1000 + 30000 * (round % 3), letter));
    if (!defaults.finishWrites(std::chrono::seconds(10))) return 1;
    std::putchar('.');
    std::fflush(stdout);
  }
}
