#pragma once

#include <filesystem>

#include "desktop/session/IniDocument.h"
#include "desktop/session/WholeFile.h"

namespace valdrix::desktop {

/// An INI file as it was when it was looked at.
struct IniFile {
  FileStamp stamp;
  FileContent::Status status = FileContent::Status::missing;
  /// It has unreadable lines, or a NUL byte, or is larger than 64 MiB.
  bool isDamaged = false;
  IniDocument document;

  [[nodiscard]] static IniFile read(const std::filesystem::path& file);
};

/// Makes the folder of `file`, for the user alone, where there is none.
void makeFolderOf(const std::filesystem::path& file);

/// Brings `changes`, whose keys are valid ones, into `file` and mends the file when it is damaged:
/// the damaged one is kept as `<name>.broken-<number>`. What others write meanwhile stays. Waits
/// for the disk. Whether all is on it.
[[nodiscard]] bool saveToIniFile(const std::filesystem::path& file,
                                 const IniDocument::Values& changes);

}  // namespace valdrix::desktop
