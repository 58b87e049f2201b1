#pragma once

#include <optional>
#include <string>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QList>
#include <QVariant>

namespace valdrix::desktop {

/// One to four keys that are pressed one after the other, each a Qt key with its modifiers.
struct KGlobalAccelSequence {
  QList<int> keys;
  bool operator==(const KGlobalAccelSequence&) const = default;

  /// As the bus has it: padded with 0.
  friend QDBusArgument& operator<<(QDBusArgument& argument, const KGlobalAccelSequence& sequence);
  friend const QDBusArgument& operator>>(const QDBusArgument& argument,
                                         KGlobalAccelSequence& sequence);
};

/// What triggers an action: any one of several sequences, or nothing.
class KGlobalAccelTriggers {
 public:
  /// One key.
  explicit KGlobalAccelTriggers(int key) : sequences_{KGlobalAccelSequence{{key}}} {}
  /// What a message of the service has at that place; none when that is something else.
  [[nodiscard]] static std::optional<KGlobalAccelTriggers> from(const QDBusMessage& message,
                                                                int place = 0);
  /// The reverse of `text`; none for what that never writes.
  [[nodiscard]] static std::optional<KGlobalAccelTriggers> parse(const std::string& text);

  /// As GVariant writes a list of strings, each of which is a sequence, its keys divided by spaces:
  /// ['16777330', '67108939 65'], @as [].
  [[nodiscard]] std::string text() const;
  /// As the service takes it.
  [[nodiscard]] QVariant argument() const;
  /// Whether this key alone is among them.
  [[nodiscard]] bool contains(int key) const { return sequences_.contains({{key}}); }
  /// Whether both have the same in any order; some versions of the service keep none.
  [[nodiscard]] bool isSameAs(const KGlobalAccelTriggers& other) const;

 private:
  KGlobalAccelTriggers() = default;

  QList<KGlobalAccelSequence> sequences_;
};

}  // namespace valdrix::desktop
