#include "desktop/session/IniFile.h"

#include <string>
#include <utility>

#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t maximumSize = std::size_t{64} << 20;

fs::path freeNameBeside(const fs::path& file) {
  std::error_code error;
  for (int number = 1;; ++number) {
    auto name = file;
    name += ".broken-" + std::to_string(number);
    if (!fs::exists(fs::symlink_status(name, error))) return name;
  }
}

// A second name leaves the first in place until it is replaced, so that no reader finds nothing.
// Some file systems have none, and where nothing will replace the file, the first has to go.
bool setAside(const fs::path& target, const fs::path& name, bool isReplaced) {
  std::error_code error;
  if (isReplaced) fs::create_hard_link(target, name, error);
  if (!isReplaced || error) fs::rename(target, name, error);
  return !error;
}

void takeBack(const fs::path& target, const fs::path& name) {
  std::error_code error;
  if (fs::equivalent(target, name, error))
    fs::remove(name, error);
  else if (!fs::exists(target, error))
    fs::rename(name, target, error);
}

enum class Outcome { saved, failed, overtaken };

Outcome replace(const fs::path& file, std::string_view text, const FileStamp& known) {
  if (stampOf(file) != known) return Outcome::overtaken;
  if (writeWholeFile(file, text, known)) return Outcome::saved;
  return stampOf(file) == known ? Outcome::failed : Outcome::overtaken;
}

Outcome mend(const fs::path& file, std::string_view text) {
  const auto target = followLinks(file);
  const auto name = freeNameBeside(target);
  if (!setAside(target, name, !text.empty())) return Outcome::failed;
  if (text.empty()) return Outcome::saved;
  const auto outcome = replace(file, text, stampOf(file));
  if (outcome == Outcome::failed) takeBack(target, name);
  return outcome;
}

Outcome saveOnce(const fs::path& file, const IniDocument::Values& changes) {
  auto found = IniFile::read(file);
  if (found.status == FileContent::Status::unreadable) return Outcome::failed;
  const auto before = found.document.text();
  found.document.removeUnreadableLines();
  for (const auto& [key, value] : changes) found.document.set(key, value);
  const auto text = found.document.text();
  if (text.size() > maximumSize) return Outcome::failed;
  if (found.isDamaged) return mend(file, text);
  return text == before ? Outcome::saved : replace(file, text, found.stamp);
}

}  // namespace

IniFile IniFile::read(const fs::path& file) {
  // Taken first: a change during the read then shows as one afterwards.
  IniFile found{stampOf(file), FileContent::Status::missing, false, {}};
  const auto content = readWholeFile(file, maximumSize);
  found.status = content.status;
  const bool isText = content.bytes.find('\0') == std::string::npos;
  if (isText) found.document = IniDocument(content.bytes);
  found.isDamaged = content.status == FileContent::Status::tooLarge || !isText ||
                    found.document.hasUnreadableLines();
  return found;
}

void makeFolderOf(const fs::path& file) {
  std::error_code error;
  if (fs::create_directories(file.parent_path(), error))
    fs::permissions(file.parent_path(), fs::perms::owner_all, error);
}

bool saveToIniFile(const fs::path& file, const IniDocument::Values& changes) {
  constexpr int rounds = 5;
  makeFolderOf(file);
  auto outcome = Outcome::overtaken;
  for (int i = 0; i < rounds && outcome == Outcome::overtaken; ++i)
    outcome = saveOnce(file, changes);
  return outcome == Outcome::saved;
}

}  // namespace valdrix::desktop
