#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "desktop/session/IniDocument.h"

namespace valdrix::desktop {

/// Writes changes of an INI file on a thread of its own, because a disk may take seconds. Gathers
/// what is changed in quick succession into one write. What could not be written goes along with
/// the next one.
class IniWriter {
 public:
  struct Result {
    IniDocument::Values values;
    bool isSaved;
  };

  /// `onResult` is called on the thread when `takeResults` has something new, and not once this has
  /// gone.
  IniWriter(std::filesystem::path file, std::function<void()> onResult);
  /// Writes what is left, and waits for that for two seconds at most; a disk that hangs for longer
  /// keeps the thread, which touches nothing of this object.
  ~IniWriter();
  IniWriter(const IniWriter&) = delete;
  IniWriter& operator=(const IniWriter&) = delete;

  /// `key` must be a valid one.
  void set(std::string_view key, std::string value);
  /// Has a damaged file mended.
  void mend();
  /// Writes at once what is left. Whether it was tried within `patience`.
  bool finish(std::chrono::milliseconds patience);
  /// What was tried since the last call.
  [[nodiscard]] std::vector<Result> takeResults();

 private:
  struct Shared;

  void request();
  static void run(Shared& shared);

  std::shared_ptr<Shared> shared_;
  std::thread thread_;
};

}  // namespace valdrix::desktop
