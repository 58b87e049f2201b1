#include "settings/AccessibilityStatusView.h"

#include "platform/PrivacyLinks.h"
#include "settings/StatusBadge.h"
#include "settings/SystemSettingsButton.h"

namespace valdrix {

namespace {

constexpr double pollInterval = 1.5;

StatusBadge badge(bool isTrusted) {
  return isTrusted ? StatusBadge::granted()
                   : StatusBadge{StatusBadge::State::warning, "Non accordée"};
}

}  // namespace

AccessibilityStatusView::AccessibilityStatusView(platform::Accessibility& accessibility,
                                                 platform::RunLoop& runLoop,
                                                 platform::Workspace& workspace)
    : workspace_(workspace),
      trusted_(accessibility.isProcessTrusted()),
      timer_(runLoop.scheduleTimer(pollInterval, true, [this, &accessibility] {
        trusted_ = accessibility.isProcessTrusted();
      })) {}

std::vector<view::FormRow> AccessibilityStatusView::body() const {
  std::vector<view::FormRow> rows{
      {.content = view::LabeledRow{"Permission Accessibilité", badge(trusted_).body()},
       .id = "accessibility"}};
  if (!trusted_)
    rows.push_back(systemSettingsButton("accessibilityButton", [&workspace = workspace_] {
      workspace.open(platform::privacyLinks::accessibility);
    }));
  return rows;
}

}  // namespace valdrix
