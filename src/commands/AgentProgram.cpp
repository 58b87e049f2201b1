#include "commands/AgentProgram.h"

#include <filesystem>
#include <unistd.h>

#include <system_error>

#include "commands/Failure.h"

namespace valdrix::commands {

int becomeAgent(char** argv) {
  namespace fs = std::filesystem;
  std::error_code error;
  const auto folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  if (!error) {
    // Side by side where they were built, in two folders where they are installed.
    for (const auto& place : {folder, folder / VALDRIX_AGENT_FOLDER})
      execv((place / "valdrix-agent").c_str(), argv);
  }
  return fail("le programme valdrix-agent est introuvable");
}

}  // namespace valdrix::commands
