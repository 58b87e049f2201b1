#include "desktop/privacy/AccessDialog.h"

#include <utility>

#include <QIcon>
#include <QMessageBox>

#include "desktop/scenes/BundledImage.h"
#include "desktop/scenes/FormButton.h"
#include "desktop/session/SoftwareSurfaces.h"

namespace valdrix::desktop {

AccessDialog::AccessDialog() = default;
AccessDialog::~AccessDialog() = default;

void AccessDialog::ask(std::function<void(Answer)> onAnswer) {
  onAnswer_ = std::move(onAnswer);
  if (!box_) show();
  box_->raise();
  box_->activateWindow();
}

void AccessDialog::show() {
  box_ = std::make_unique<QMessageBox>();
  box_->setWindowTitle("valdrix");
  constexpr int iconSize = 64;
  const auto icon = bundledImage("AppIcon");
  box_->setWindowIcon(icon);
  box_->setIconPixmap(icon.pixmap(iconSize));
  box_->setTextFormat(Qt::PlainText);
  box_->setText("Autoriser valdrix à lire tes calendriers\u00A0?");
  box_->setInformativeText(
      "Tes prochains événements s'afficheront dans l'encoche. valdrix les lit sur cet ordinateur, "
      "ne les modifie pas et ne les envoie nulle part.");
  const auto add = [this](const char* title, QMessageBox::ButtonRole role) {
    auto* const button = new FormButton(title, box_.get());
    box_->addButton(button, role);
    return button;
  };
  auto* const later = add("Plus tard", QMessageBox::RejectRole);
  auto* const refuse = add("Refuser", QMessageBox::DestructiveRole);
  auto* const allow = add("Autoriser", QMessageBox::AcceptRole);
  box_->setDefaultButton(later);
  box_->setEscapeButton(later);
  // The user's other windows, the notch among them, stay usable, but don't bury it.
  box_->setWindowModality(Qt::NonModal);
  box_->setWindowFlag(Qt::WindowStaysOnTopHint);
  QObject::connect(box_.get(), &QMessageBox::finished, box_.get(), [this, refuse, allow] {
    const auto* const clicked = box_->clickedButton();
    const auto answer = clicked == allow    ? Answer::allowed
                        : clicked == refuse ? Answer::refused
                                            : Answer::none;
    // It is in the middle of a signal of its own.
    box_.release()->deleteLater();
    if (const auto block = std::exchange(onAnswer_, nullptr)) block(answer);
  });
  withSoftwareSurfaces([this] { box_->show(); });
}

}  // namespace valdrix::desktop
