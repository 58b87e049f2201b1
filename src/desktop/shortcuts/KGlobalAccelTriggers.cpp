#include "desktop/shortcuts/KGlobalAccelTriggers.h"

#include <algorithm>

#include <QDBusMetaType>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace valdrix::desktop {

namespace {

constexpr int placesOnBus = 4;
constexpr QStringView noStrings = u"@as []";
constexpr QStringView separator = u"', '";

std::optional<KGlobalAccelSequence> parseSequence(const QString& text) {
  KGlobalAccelSequence sequence;
  for (const auto& word : text.split(u' ')) {
    sequence.keys.append(word.toInt());
    if (sequence.keys.back() <= 0) return std::nullopt;
  }
  return sequence.keys.size() <= placesOnBus ? std::optional(sequence) : std::nullopt;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const KGlobalAccelSequence& sequence) {
  auto keys = sequence.keys;
  keys.resize(placesOnBus);
  argument.beginStructure();
  argument << keys;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, KGlobalAccelSequence& sequence) {
  argument.beginStructure();
  argument >> sequence.keys;
  argument.endStructure();
  sequence.keys.removeAll(0);
  return argument;
}

std::optional<KGlobalAccelTriggers> KGlobalAccelTriggers::from(const QDBusMessage& message,
                                                               int place) {
  const auto argument = message.arguments().value(place).value<QDBusArgument>();
  if (argument.currentSignature() != "a(ai)") return std::nullopt;
  KGlobalAccelTriggers triggers;
  triggers.sequences_ = qdbus_cast<QList<KGlobalAccelSequence>>(argument);
  // A key that belongs to another action is kept as none.
  triggers.sequences_.removeAll({});
  return triggers;
}

std::optional<KGlobalAccelTriggers> KGlobalAccelTriggers::parse(const std::string& text) {
  KGlobalAccelTriggers triggers;
  const auto list = QString::fromStdString(text);
  if (list == noStrings) return triggers;
  if (!list.startsWith(u"['") || !list.endsWith(u"']")) return std::nullopt;
  for (const auto& string : list.mid(2).chopped(2).split(separator.toString())) {
    const auto sequence = parseSequence(string);
    if (!sequence) return std::nullopt;
    triggers.sequences_.append(*sequence);
  }
  return triggers;
}

std::string KGlobalAccelTriggers::text() const {
  if (sequences_.isEmpty()) return noStrings.toString().toStdString();
  QStringList strings;
  for (const auto& sequence : sequences_) {
    QStringList keys;
    for (const int key : sequence.keys) keys.append(QString::number(key));
    strings.append(keys.join(u' '));
  }
  return "['" + strings.join(separator).toStdString() + "']";
}

QVariant KGlobalAccelTriggers::argument() const {
  [[maybe_unused]] static const bool areTypesKnown =
      (qDBusRegisterMetaType<KGlobalAccelSequence>(),
       qDBusRegisterMetaType<QList<KGlobalAccelSequence>>().isValid());
  return QVariant::fromValue(sequences_);
}

bool KGlobalAccelTriggers::isSameAs(const KGlobalAccelTriggers& other) const {
  return sequences_.size() == other.sequences_.size() &&
         std::ranges::all_of(sequences_, [&](const KGlobalAccelSequence& sequence) {
           return other.sequences_.contains(sequence);
         });
}

}  // namespace valdrix::desktop
