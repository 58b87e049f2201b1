#pragma once

#include <map>
#include <memory>
#include <utility>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace valdrix::tests {

/// KDE's service of global shortcuts as version 5.103 was seen to answer: a key belongs to one
/// action, whether or not the action's program runs; who asks for another's key gets 0 in its
/// place; an action that it does not know has no keys; only changes made for others are signalled.
class FakeKGlobalAccel : private QDBusVirtualObject {
 public:
  using Sequences = QList<QList<int>>;  ///< each of four keys, 0 where there is none

  FakeKGlobalAccel();
  ~FakeKGlobalAccel() override;

  /// Whether it runs. What it knows of actions outlives it, but their programs have to say anew
  /// that they are there.
  void setRunning(bool isRunning);
  /// An action of a program that runs, with these keys as its default.
  void add(const QString& component, const QString& action, const Sequences& keys);
  [[nodiscard]] Sequences keysOf(const QString& component, const QString& action) const;
  /// The names of a component's actions.
  [[nodiscard]] QStringList actionsOf(const QString& component) const;
  /// Signals `name` for the action whose program runs and has this key; whether there is one.
  bool signal(const char* name, int key);

 private:
  struct Action {
    Sequences keys;
    Sequences defaultKeys;
    bool isPresent = false;
  };
  using Id = std::pair<QString, QString>;

  [[nodiscard]] QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  [[nodiscard]] QVariantList answer(const QDBusMessage& call);
  void set(const Id& id, Sequences keys);

  std::map<Id, Action> actions_;
  QDBusConnection connection_;
};

}  // namespace valdrix::tests
