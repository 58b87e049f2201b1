#include "desktop/ui/QtCollator.h"

#include <QLocale>
#include <QString>

namespace valdrix::desktop {

namespace {

/// The user's own language, and that of the program where there is none, which would sort by code.
QLocale collationLocale() {
  const QLocale locale = QLocale::system().collation();
  return locale.language() == QLocale::C ? QLocale(QLocale::French) : locale;
}

QString toQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QtCollator::QtCollator() : collator_(collationLocale()) {
  collator_.setCaseSensitivity(Qt::CaseInsensitive);
}

int QtCollator::compareIgnoringCase(std::string_view a, std::string_view b) const {
  return collator_.compare(toQt(a), toQt(b));
}

}  // namespace valdrix::desktop
