#pragma once

#include <memory>

#include "desktop/calendar/AccessPrompt.h"

class QMessageBox;

namespace valdrix::desktop {

/// The question as a window of the desktop. Needs a QApplication.
///
/// It may come up while the user types elsewhere, so no key that they may be about to press answers
/// it: Enter, Space and Escape put the question off, as closing the window does, and an answer
/// takes a step to its button first. Mnemonics there are none, since a message box takes their
/// letters without Alt as well.
class AccessDialog final : public AccessPrompt {
 public:
  AccessDialog();
  ~AccessDialog() override;
  AccessDialog(const AccessDialog&) = delete;
  AccessDialog& operator=(const AccessDialog&) = delete;

  void ask(std::function<void(Answer answer)> onAnswer) override;

 private:
  void show();

  std::unique_ptr<QMessageBox> box_;
  std::function<void(Answer)> onAnswer_;
};

}  // namespace valdrix::desktop
