#include "desktop/vdir/VdirIndex.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>

#include <sys/stat.h>

#include "desktop/session/WholeFile.h"
#include "desktop/vdir/Fnv1a.h"

namespace valdrix::desktop {
namespace fs = std::filesystem;

using platform::Instant;

namespace {

// The number after it says how to read the rest; a machine of another byte order reads it
// otherwise.
constexpr std::string_view heading = "valdrix calendar index\n";
constexpr std::uint32_t version = 1;
constexpr std::size_t maximumSize = std::size_t{4} << 30U;

template <class T>
void append(std::string& bytes, T number) {
  static_assert(std::is_integral_v<T>);
  std::array<char, sizeof(T)> raw{};
  std::memcpy(raw.data(), &number, sizeof(T));
  bytes.append(raw.data(), raw.size());
}

void appendText(std::string& bytes, std::string_view text) {
  append(bytes, static_cast<std::uint32_t>(text.size()));
  bytes += text;
}

/// Takes values off the front of some bytes; once they are too short, all that follows is zero.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  template <class T>
  T take() {
    T number{};
    if (const auto raw = takeBytes(sizeof(T)); !raw.empty())
      std::memcpy(&number, raw.data(), sizeof(T));
    return number;
  }
  std::string_view takeText() { return takeBytes(take<std::uint32_t>()); }
  std::string_view takeBytes(std::size_t size) {
    isWhole_ = isWhole_ && size <= rest_.size();
    const auto bytes = rest_.substr(0, isWhole_ ? size : 0);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }
  [[nodiscard]] bool isWhole() const { return isWhole_; }
  [[nodiscard]] std::size_t rest() const { return rest_.size(); }

 private:
  std::string_view rest_;
  bool isWhole_ = true;
};

VdirFiles takeFiles(Reader& reader) {
  constexpr std::size_t smallestFile = 32;
  const auto count = reader.take<std::uint64_t>();
  VdirFiles files;
  files.reserve(std::min<std::size_t>(count, reader.rest() / smallestFile));
  for (std::uint64_t i = 0; i < count && reader.isWhole(); ++i) {
    auto& file = files[std::string(reader.takeText())];
    file.stamp.changed = reader.take<std::int64_t>();
    file.stamp.inode = reader.take<std::uint64_t>();
    file.stamp.size = reader.take<std::uint32_t>();
    file.nextStart = Instant(Instant::duration(reader.take<std::int64_t>()));
  }
  return files;
}

std::optional<VdirIndex> parse(std::string_view bytes) {
  std::uint64_t checksum = 0;
  if (!bytes.starts_with(heading) || bytes.size() < heading.size() + sizeof(checksum))
    return std::nullopt;
  std::memcpy(&checksum, bytes.data() + bytes.size() - sizeof(checksum), sizeof(checksum));
  bytes.remove_suffix(sizeof(checksum));
  if (fnv1a(bytes) != checksum) return std::nullopt;

  Reader reader(bytes.substr(heading.size()));
  if (reader.take<std::uint32_t>() != version) return std::nullopt;
  VdirIndex index{.since = Instant(Instant::duration(reader.take<std::int64_t>()))};
  while (reader.isWhole() && reader.rest() > 0) {
    const std::string path(reader.takeText());
    index.folders[path] = takeFiles(reader);
  }
  return reader.isWhole() ? std::optional(std::move(index)) : std::nullopt;
}

}  // namespace

VdirIndex VdirIndex::load(const fs::path& file) {
  if (file.empty()) return {};
  return parse(readWholeFile(file, maximumSize).bytes).value_or(VdirIndex());
}

VdirIndexWriter::VdirIndexWriter(Instant since) : bytes_(heading) {
  append(bytes_, version);
  append(bytes_, std::int64_t{since.time_since_epoch().count()});
}

void VdirIndexWriter::add(const std::string& path, const VdirFiles& files) {
  const auto isKept = [](const VdirFiles::value_type& file) {
    return file.second.stamp.changed >= 0 && !file.second.isCollection;
  };
  appendText(bytes_, path);
  append(bytes_, static_cast<std::uint64_t>(std::ranges::count_if(files, isKept)));
  for (const auto& entry : files) {
    if (!isKept(entry)) continue;
    appendText(bytes_, entry.first);
    append(bytes_, entry.second.stamp.changed);
    append(bytes_, entry.second.stamp.inode);
    append(bytes_, entry.second.stamp.size);
    append(bytes_, std::int64_t{entry.second.nextStart.time_since_epoch().count()});
  }
}

bool VdirIndexWriter::save(const fs::path& file) && {
  append(bytes_, fnv1a(bytes_));
  std::error_code error;
  const auto folder = file.parent_path();
  fs::create_directories(folder.parent_path(), error);
  ::mkdir(folder.c_str(), S_IRWXU);
  removeAbandonedWrites(file);
  return writeWholeFile(file, bytes_);
}

}  // namespace valdrix::desktop
