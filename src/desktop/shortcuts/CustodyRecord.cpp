#include "desktop/shortcuts/CustodyRecord.h"

#include <optional>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <system_error>

#include "desktop/session/WholeFile.h"

namespace valdrix::desktop {

namespace fs = std::filesystem;

namespace {

using Content = CustodyRecord::Content;
using Entry = CustodyRecord::Entry;
using Status = CustodyRecord::Status;

constexpr int recordVersion = 1;
constexpr std::size_t largestRecord = std::size_t{1} << 20;

QString qt(const std::string& text) { return QString::fromStdString(text); }

QJsonValue json(const SettingStore::Value& value) { return value ? qt(*value) : QJsonValue(); }

template <class Texts>
QJsonArray array(const Texts& texts) {
  QJsonArray all;
  for (const auto& text : texts) all.append(qt(text));
  return all;
}

QJsonObject json(const Entry& entry) {
  QJsonObject object{{"desktop", qt(entry.desktop)},
                     {"store", qt(entry.store)},
                     {"setting", qt(entry.setting)},
                     {"before", json(entry.before)},
                     {"written", json(entry.written)}};
  if (!entry.added.empty()) object["added"] = array(entry.added);
  return object;
}

SettingStore::Value value(const QJsonValue& json) {
  return json.isString() ? SettingStore::Value(json.toString().toStdString()) : std::nullopt;
}

std::vector<std::string> texts(const QJsonValue& json) {
  std::vector<std::string> all;
  for (const auto& text : json.toArray()) all.push_back(text.toString().toStdString());
  return all;
}

std::optional<Entry> entry(const QJsonObject& object) {
  const auto text = [&](const char* name) { return object[name].toString().toStdString(); };
  const bool isWhole = object.contains("before") && object.contains("written");
  Entry entry{.desktop = text("desktop"),
              .store = text("store"),
              .setting = text("setting"),
              .before = value(object["before"]),
              .written = value(object["written"]),
              .added = texts(object["added"])};
  if (!isWhole || entry.desktop.empty() || entry.store.empty() || entry.setting.empty())
    return std::nullopt;
  return entry;
}

Status parse(const std::string& bytes, Content& content) {
  const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(bytes));
  const auto written = document["version"].toInt();
  if (written > recordVersion) return Status::unreadable;
  if (written != recordVersion || !document["settings"].isArray() ||
      !document["entrusted"].isArray())
    return Status::broken;
  for (const auto& desktop : texts(document["entrusted"])) content.consents.insert(desktop);
  for (const auto& object : document["settings"].toArray()) {
    auto one = entry(object.toObject());
    if (!one) return Status::broken;
    content.entries.push_back(std::move(*one));
  }
  return Status::read;
}

}  // namespace

CustodyRecord::CustodyRecord(fs::path file) : file_(std::move(file)) {
  removeAbandonedWrites(file_);
  const auto found = readWholeFile(file_, largestRecord);
  switch (found.status) {
    case FileContent::Status::missing:
      break;
    case FileContent::Status::unreadable:
      status_ = Status::unreadable;
      break;
    case FileContent::Status::tooLarge:
      status_ = Status::broken;
      break;
    case FileContent::Status::read:
      status_ = parse(found.bytes, content_);
      break;
  }
  if (status_ != Status::read) content_ = {};
}

fs::path CustodyRecord::standardFile() {
  const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return fs::path(QFile::encodeName(folder).toStdString()) / "valdrix" / "desktop-keys.json";
}

bool CustodyRecord::save(const Content& content) {
  std::error_code error;
  if (status_ == Status::unreadable || (status_ == Status::broken && !setAside())) return false;
  if (content.isEmpty()) {
    fs::remove(file_, error);
    status_ = error ? status_ : Status::missing;
  } else {
    QJsonArray entries;
    for (const auto& entry : content.entries) entries.append(json(entry));
    const QJsonObject object{
        {"version", recordVersion}, {"entrusted", array(content.consents)}, {"settings", entries}};
    if (fs::create_directories(file_.parent_path(), error))
      fs::permissions(file_.parent_path(), fs::perms::owner_all, error);
    if (!writeWholeFile(file_, QJsonDocument(object).toJson().toStdString())) return false;
    status_ = Status::read;
  }
  if (error) return false;
  content_ = content;
  return true;
}

bool CustodyRecord::setAside() const {
  std::error_code error;
  for (int number = 1;; ++number) {
    auto name = file_;
    name += ".broken-" + std::to_string(number);
    if (fs::exists(fs::symlink_status(name, error))) continue;
    fs::rename(file_, name, error);
    return !error;
  }
}

}  // namespace valdrix::desktop
