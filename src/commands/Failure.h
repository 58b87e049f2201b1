#pragma once

#include <cstdio>

namespace valdrix::commands {

/// Tells whoever started the program why it cannot go on. Returns the exit status for that, 1.
inline int fail(const char* message) {
  std::fprintf(stderr, "valdrix : %s\n", message);
  return 1;
}

}  // namespace valdrix::commands
