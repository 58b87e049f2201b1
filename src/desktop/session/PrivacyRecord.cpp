#include "desktop/session/PrivacyRecord.h"

#include <QFile>
#include <QStandardPaths>

namespace valdrix::desktop {

namespace {

constexpr auto calendarsKey = "calendars";
constexpr auto toldKeyLossesKey = "toldKeyLosses";
constexpr auto allowed = "allowed";
constexpr auto refused = "refused";

}  // namespace

std::filesystem::path PrivacyRecord::standardFile() {
  // Qt learns of this folder only in version 6.7. Relative paths are to be ignored.
  std::filesystem::path folder = qgetenv("XDG_STATE_HOME").toStdString();
  if (!folder.is_absolute()) {
    const auto home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    folder = std::filesystem::path(QFile::encodeName(home).toStdString()) / ".local" / "state";
  }
  return folder / "valdrix" / "privacy.conf";
}

PrivacyRecord::Answer PrivacyRecord::calendars() const {
  const auto answer = file_.stringForKey(calendarsKey);
  if (answer == allowed) return Answer::allowed;
  if (answer == refused) return Answer::refused;
  return Answer::none;
}

void PrivacyRecord::setCalendars(Answer answer) {
  file_.set(calendarsKey, std::string(answer == Answer::allowed ? allowed : refused));
}

std::string PrivacyRecord::toldKeyLosses() const {
  return file_.stringForKey(toldKeyLossesKey).value_or(std::string());
}

void PrivacyRecord::setToldKeyLosses(const std::string& losses) {
  file_.set(toldKeyLossesKey, losses);
}

}  // namespace valdrix::desktop
