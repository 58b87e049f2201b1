#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include <QObject>

#include "desktop/session/FileWatch.h"
#include "desktop/session/IniDocument.h"
#include "desktop/session/IniFile.h"
#include "desktop/session/IniWriter.h"
#include "observation/Token.h"
#include "platform/TextUserDefaults.h"

namespace valdrix::desktop {

/// The preferences in one INI file that users may edit while the agent runs.
///
/// Each read looks whether the file changed, so it is never stale; a watch is there for observers
/// only. Changes are written on a thread of their own shortly after the last of them, and each
/// write replaces the file as a whole. What cannot be written (no permission, no space, a file that
/// cannot be read) is kept in memory for this run and goes along with the next write.
///
/// A file is damaged when it has lines that are neither blank, comment, group nor `key=value`, has
/// a NUL byte, or is larger than 64 MiB. It is kept as `<name>.broken-<number>`: from the start
/// when it is found then, but only from the next write when it changes meanwhile, lest it be taken
/// from under an editor that is half done. Its readable lines stay in force, unless it is not a
/// text at all. A value of the wrong type is no damage: it stays, and counts as missing.
///
/// Why not a library: QSettings waits for seconds for other writers' locks, drops comments and
/// takes `1,5` for a list; GLib's key files refuse the bytes that a folder's name, and so a
/// calendar's identifier, may have.
class IniUserDefaults final : public platform::TextUserDefaults {
 public:
  /// `file` need not exist, nor its folder.
  explicit IniUserDefaults(std::filesystem::path file);
  /// Where the user's preferences are: `valdrix/valdrix.conf` in the folder for configurations.
  [[nodiscard]] static std::filesystem::path standardFile();

  void set(std::string_view key, Value value) override;

  /// Calls `block` at a later turn of the loop after stored values changed, by this program or by
  /// others; several changes may give one call.
  [[nodiscard]] Token observeChanges(std::function<void()> block) override;

  /// Calls `block` at a later turn of the loop when a change could not be written, and not again
  /// until one could.
  void setOnFailure(std::function<void()> block) { onFailure_ = std::move(block); }
  /// Writes at once what is left. Whether it was tried within `patience`.
  bool finishWrites(std::chrono::milliseconds patience);

 protected:
  [[nodiscard]] std::optional<std::string_view> storedText(std::string_view key) const override;

 private:
  using Observers = std::map<std::uint64_t, std::function<void()>>;

  /// Takes up what became of the file and of our writes to it.
  void look() const;
  void forget(const IniWriter::Result& result) const;
  /// All that holds.
  [[nodiscard]] IniDocument::Values values() const;
  void scheduleNotice() const;
  void notifyObservers() const;

  std::filesystem::path file_;
  mutable IniFile found_;
  mutable IniDocument::Values unsaved_;
  mutable bool hasFailed_ = false;
  std::function<void()> onFailure_;
  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
  std::uint64_t nextObserver_ = 1;
  mutable bool isNoticeScheduled_ = false;
  mutable QObject turn_;  ///< receives the queued notice, and takes it along when it goes
  mutable IniWriter writer_;
  FileWatch watch_;
};

}  // namespace valdrix::desktop
