#pragma once

#include <functional>
#include <map>
#include <optional>
#include <utility>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QVariantMap>

namespace valdrix::desktop {

/// An object on a message bus with one interface, given as tables. Calls that the tables do not
/// know, other arguments and writes are answered with the bus's usual errors. Main thread only.
class BusObject : private QDBusVirtualObject {
 public:
  struct Method {
    QString input;   ///< the signature of the arguments
    QString output;  ///< the signature of the answer, for who looks at the object
    /// The reply or the error. It may not end the object.
    std::function<QDBusMessage(const QDBusMessage&)> answer;
  };
  struct Interface {
    QString name;
    std::map<QString, Method> methods;
    QVariantMap properties;
    std::map<QString, QString> signalsOut;  ///< the signature of each signal
  };

  /// `path` is where the object stands on every bus that it is served on.
  explicit BusObject(QString path) : path_(std::move(path)) {}

  [[nodiscard]] const QString& path() const { return path_; }
  /// Serves it on `connection` from now on; the one before has ended.
  void serve(QDBusConnection& connection);

 protected:
  /// To be called once, before it is served.
  void define(Interface interface) { interface_ = std::move(interface); }
  /// Tells whoever listens.
  void sendSignal(const QString& name, const QVariantList& arguments) const;
  [[nodiscard]] static QDBusMessage invalidArguments(const QDBusMessage& call);

 private:
  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  [[nodiscard]] QDBusMessage answerAboutProperties(const QDBusMessage& call) const;

  const QString path_;
  Interface interface_;
  std::optional<QDBusConnection> connection_;
};

}  // namespace valdrix::desktop
