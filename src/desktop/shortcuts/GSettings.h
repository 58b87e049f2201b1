#pragma once

#include <map>
#include <string>

#include <QElapsedTimer>
#include <QString>

#include "desktop/shortcuts/SettingStore.h"
#include "desktop/shortcuts/ToolRunner.h"

namespace valdrix::desktop {

/// The settings of GNOME and its kin, by the tool `gsettings`. A setting's name is its schema and
/// its key, "org.example.keys volume-up", or for schemas without a place of their own schema, path
/// and key, "org.example.custom:/org/example/custom/one/ name". Values are GVariant texts. Whether
/// a setting is at its default because nobody has set it cannot be seen: reading never gives none,
/// and writing the default is the same as none.
class GSettings final : public SettingStore {
 public:
  [[nodiscard]] std::string name() const override { return "gsettings"; }
  void read(const std::string& setting, OnRead done) override;
  void write(const std::string& setting, const Value& value, OnWritten done) override;

 private:
  using Keys = std::map<QString, std::string>;

  /// The keys of a schema with their values; null when there is no such schema, or nobody answers.
  using OnListed = std::function<void(const Keys* keys)>;
  void list(const QString& schema, const OnListed& done);
  void listDefaults(const QString& schema, const OnListed& done);

  ToolRunner tool_{"gsettings"};
  /// What was listed last, which answers for its other keys in the same breath.
  QString listed_;
  Keys values_;
  QElapsedTimer age_;
  /// By the schema without path.
  std::map<QString, Keys> defaults_;
};

}  // namespace valdrix::desktop
