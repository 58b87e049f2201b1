#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/keys/KeyCustody.h"
#include "desktop/shortcuts/CustodyPlan.h"
#include "desktop/shortcuts/CustodyRecord.h"
#include "desktop/shortcuts/KnownDesktop.h"
#include "desktop/shortcuts/SettingStores.h"
#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// A custody by the desktop's own settings. What it changes is recorded beforehand, and each change
/// is made by comparing what is with what is wanted, again and again until nothing is left to do:
/// it does not matter at which point the process before was ended, nor who else changes settings.
///
/// It begins when it is told which keys are wanted; without consent and without anything to give
/// back it never asks the desktop. What does not answer is tried again, in growing intervals.
class DesktopKeyCustody final : public KeyCustody {
 public:
  using Stores = SettingStores::Stores;

  /// `desktop` is the one that runs, null for an unknown one; `program` is what its shortcuts are
  /// to call. `runLoop` outlives this.
  DesktopKeyCustody(platform::RunLoop& runLoop, Stores stores, const KnownDesktop* desktop,
                    std::string program, CustodyRecord record = CustodyRecord());

  [[nodiscard]] State state() const override { return state_; }
  void entrust() override;
  /// Gives back what was changed on any desktop.
  void restore() override;
  void setWanted(const std::set<platform::MediaKey>& keys) override;
  [[nodiscard]] Token observe(std::function<void()> block) override {
    return observers_.add(std::move(block));
  }

  /// Whether keys that are entrusted come as commands.
  [[nodiscard]] bool sendsCommands() const { return desktop_ && desktop_->sendsCommands; }
  /// Whether they come as the desktop's global shortcuts.
  [[nodiscard]] bool leavesToShortcuts() const { return desktop_ && desktop_->leavesToShortcuts; }

 private:
  using Changes = SettingStores::Changes;
  using Setting = SettingStores::Setting;
  using Readings = SettingStores::Readings;

  [[nodiscard]] bool isConsented() const;
  /// Whether anything is or was entrusted, or is to be found out.
  [[nodiscard]] bool hasWork() const;
  void reconsiderLater();
  /// Makes a pass: reads, decides, writes, and passes again until nothing is left to write.
  void reconcile();
  void decide(const Changes& changes, const Readings& readings);
  void takeUpEvidence();
  void finish(const CustodyPlan& plan);

  [[nodiscard]] Changes wantedChanges() const;
  [[nodiscard]] KnownDesktop::Keys wantedKeys() const;
  [[nodiscard]] std::vector<Setting> settingsOf(const Changes& changes) const;
  /// Whether the entry is this pass's business.
  [[nodiscard]] bool concerns(const CustodyRecord::Entry& entry) const;
  [[nodiscard]] std::string noteOn(const CustodyPlan& plan) const;
  void fail(std::string note);
  void end(std::string note, bool isComplete);
  void tell();

  platform::RunLoop& runLoop_;
  const SettingStores stores_;
  const KnownDesktop* const desktop_;
  const std::string program_;
  CustodyRecord record_;
  CustodyRecord::Content content_;
  std::optional<std::set<platform::MediaKey>> wanted_;
  std::set<platform::MediaKey> entrusted_;
  State state_;
  int passes_ = 0;
  bool isPassing_ = false;
  bool isScheduled_ = false;
  /// Something is wanted otherwise than when the pass began.
  bool isOutdated_ = false;
  double retryDelay_;
  Token retry_;
  Listeners<> observers_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
