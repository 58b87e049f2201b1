#include "desktop/shortcuts/GSettings.h"

#include <memory>
#include <optional>
#include <utility>

#include <QStringList>

namespace valdrix::desktop {

namespace {

constexpr int freshMilliseconds = 1000;

struct SchemaKey {
  explicit SchemaKey(const std::string& setting) {
    const auto text = QString::fromStdString(setting);
    schema = text.section(' ', 0, -2);
    key = text.section(' ', -1);
  }
  QString schema;  ///< with its path, if it has one
  QString key;
};

/// Lines of schema, key and value.
std::map<QString, std::string> parseLines(const QByteArray& output) {
  std::map<QString, std::string> keys;
  for (const auto& line : QString::fromUtf8(output).split('\n', Qt::SkipEmptyParts))
    keys[line.section(' ', 1, 1)] = line.section(' ', 2).toStdString();
  return keys;
}

}  // namespace

void GSettings::read(const std::string& setting, OnRead done) {
  const SchemaKey name(setting);
  list(name.schema, [key = name.key, done = std::move(done)](const Keys* keys) {
    if (!keys || !keys->contains(key)) return done(std::nullopt);
    done(Value(keys->at(key)));
  });
}

void GSettings::write(const std::string& setting, const Value& value, OnWritten done) {
  const SchemaKey name(setting);
  listDefaults(name.schema, [this, name, value, done = std::move(done)](const Keys* defaults) {
    listed_.clear();
    const bool isDefault =
        !value || (defaults && defaults->contains(name.key) && defaults->at(name.key) == *value);
    QStringList words{isDefault ? "reset" : "set", name.schema, name.key};
    if (!isDefault) words << QString::fromStdString(*value);
    tool_.run(words, {},
              [done](const std::optional<QByteArray>& output) { done(output.has_value()); });
  });
}

void GSettings::list(const QString& schema, const OnListed& done) {
  const bool isFresh = listed_ == schema && age_.isValid() && !age_.hasExpired(freshMilliseconds);
  const QStringList words = isFresh ? QStringList() : QStringList{"list-recursively", schema};
  tool_.run(words, {}, [this, isFresh, schema, done](const std::optional<QByteArray>& output) {
    if (!output) return done(nullptr);
    if (!isFresh) {
      listed_ = schema;
      values_ = parseLines(*output);
      age_.start();
    }
    done(&values_);
  });
}

void GSettings::listDefaults(const QString& schema, const OnListed& done) {
  const auto name = schema.section(':', 0, 0);
  if (const auto known = defaults_.find(name); known != defaults_.end())
    return done(&known->second);
  // There nothing has ever been set.
  tool_.run({"list-recursively", schema}, {"GSETTINGS_BACKEND=memory"},
            [this, name, done](const std::optional<QByteArray>& output) {
              if (!output) return done(nullptr);
              done(&(defaults_[name] = parseLines(*output)));
            });
}

}  // namespace valdrix::desktop
