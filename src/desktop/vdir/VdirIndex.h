#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "desktop/vdir/VdirFile.h"
#include "platform/Instant.h"

namespace valdrix::desktop {

/// What is known of all files at one time, kept on disk so that the next start reads only those
/// that changed. Holds names, stamps and times of files, nothing that is in them.
struct VdirIndex {
  /// From when on the next starts were looked for.
  platform::Instant since{};
  std::map<std::string, VdirFiles> folders{};  ///< by path

  /// An empty one when there is none, or when it is damaged or of another version.
  [[nodiscard]] static VdirIndex load(const std::filesystem::path& file);
};

/// Puts an index together without copying the files' table. Folders go in one by one.
class VdirIndexWriter {
 public:
  explicit VdirIndexWriter(platform::Instant since);
  /// Leaves out what must be read again at the next start anyway.
  void add(const std::string& path, const VdirFiles& files);
  /// Whether it is on disk.
  [[nodiscard]] bool save(const std::filesystem::path& file) &&;

 private:
  std::string bytes_;
};

}  // namespace valdrix::desktop
