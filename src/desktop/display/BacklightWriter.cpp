#include "desktop/display/BacklightWriter.h"

#include <fcntl.h>
#include <fstream>
#include <limits>
#include <unistd.h>

#include <system_error>

namespace valdrix::desktop {
namespace fs = std::filesystem;
namespace {

bool isWritable(const fs::path& file) {
  return ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0;
}

bool writeNumber(const fs::path& file, std::uint64_t number) {
  // Not opened without the right to, because opening would create a file.
  if (!isWritable(file)) return false;
  std::ofstream stream(file);
  stream << number << '\n' << std::flush;
  return stream.good();
}

}  // namespace

bool BacklightWriter::canWrite(const Backlight& backlight) {
  std::error_code error;
  return isWritable(backlight.folder / "brightness") ||
         fs::is_directory(root_ / "run" / "systemd" / "seats", error) || session_.isReachable();
}

bool BacklightWriter::write(const Backlight& backlight, std::uint64_t brightness) {
  if (writeNumber(backlight.folder / "brightness", brightness)) return true;
  return brightness <= std::numeric_limits<std::uint32_t>::max() &&
         session_.setBrightness(QStringLiteral("backlight"), QString::fromStdString(backlight.name),
                                static_cast<std::uint32_t>(brightness));
}

void BacklightWriter::tryWrite(const Backlight& backlight, std::uint64_t brightness,
                               QObject& context, std::function<void(bool)> done) {
  if (writeNumber(backlight.folder / "brightness", brightness)) return done(true);
  if (brightness > std::numeric_limits<std::uint32_t>::max()) return done(false);
  session_.trySetBrightness(QStringLiteral("backlight"), QString::fromStdString(backlight.name),
                            static_cast<std::uint32_t>(brightness), context, std::move(done));
}

}  // namespace valdrix::desktop
