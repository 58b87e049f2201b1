#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/shortcuts/CustodyPlan.h"
#include "desktop/shortcuts/SettingChange.h"
#include "desktop/shortcuts/SettingStore.h"
#include "observation/Lifetime.h"

namespace valdrix::desktop {

/// All stores of settings together, asked for one thing after the other. A store that is not there
/// answers nothing. What was asked for when this ends is not answered. Main thread only.
class SettingStores {
 public:
  using Stores = std::vector<std::unique_ptr<SettingStore>>;
  using Setting = CustodyPlan::Setting;
  using Readings = CustodyPlan::Readings;
  using Changes = std::vector<SettingChange>;

  explicit SettingStores(Stores stores) : stores_(std::move(stores)) {}

  /// The changes with the names of the settings that their patterns stand for. A pattern that
  /// cannot be looked up stays, as a setting that cannot be read.
  void find(Changes patterns, std::function<void(const Changes&)> done) const {
    find(std::move(patterns), {}, std::move(done));
  }
  void read(std::vector<Setting> settings, std::function<void(const Readings&)> done) const {
    read(std::move(settings), {}, std::move(done));
  }
  /// Goes on only as long as `isWanted`. Whether a write worked is for the next reading to see.
  void write(std::vector<CustodyPlan::Write> writes, std::function<bool()> isWanted,
             std::function<void()> done) const;

 private:
  void find(Changes patterns, Changes found, std::function<void(const Changes&)> done) const;
  void read(std::vector<Setting> settings, Readings readings,
            std::function<void(const Readings&)> done) const;
  [[nodiscard]] SettingStore* named(const std::string& name) const;

  const Stores stores_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
