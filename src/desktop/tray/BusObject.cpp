#include "desktop/tray/BusObject.h"

#include <QDBusMetaType>
#include <QDBusVariant>

namespace valdrix::desktop {

namespace {

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QString argumentsXml(const QString& signature, const QString& direction) {
  QString xml;
  // Each complete type is an argument of its own.
  int depth = 0;
  QString type;
  for (const QChar c : signature) {
    type += c;
    if (c == u'(' || c == u'{') ++depth;
    if (c == u')' || c == u'}') --depth;
    if (depth > 0 || c == u'a') continue;
    xml += QStringLiteral("<arg type=\"%1\"%2/>").arg(type, direction);
    type.clear();
  }
  return xml;
}

}  // namespace

void BusObject::serve(QDBusConnection& connection) {
  connection_ = connection;
  connection_->registerVirtualObject(path_, this);
}

void BusObject::sendSignal(const QString& name, const QVariantList& arguments) const {
  if (!connection_) return;
  auto message = QDBusMessage::createSignal(path_, interface_.name, name);
  message.setArguments(arguments);
  connection_->send(message);
}

QDBusMessage BusObject::invalidArguments(const QDBusMessage& call) {
  return call.createErrorReply(
      QDBusError::InvalidArgs,
      QStringLiteral("Arguments that %1 does not take").arg(call.member()));
}

QString BusObject::introspect(const QString&) const {
  QString xml = QStringLiteral("<interface name=\"%1\">").arg(interface_.name);
  for (const auto& [name, method] : interface_.methods)
    xml += QStringLiteral("<method name=\"%1\">%2%3</method>")
               .arg(name, argumentsXml(method.input, QStringLiteral(" direction=\"in\"")),
                    argumentsXml(method.output, QStringLiteral(" direction=\"out\"")));
  for (const auto& [name, signature] : interface_.signalsOut)
    xml += QStringLiteral("<signal name=\"%1\">%2</signal>").arg(name, argumentsXml(signature, {}));
  for (auto property = interface_.properties.begin(); property != interface_.properties.end();
       ++property)
    xml += QStringLiteral("<property name=\"%1\" type=\"%2\" access=\"read\"/>")
               .arg(property.key(),
                    QLatin1String(QDBusMetaType::typeToSignature(property->metaType())));
  return xml + QStringLiteral("</interface>");
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const auto reply = [&](const QDBusMessage& answer) {
    if (message.isReplyRequired()) connection.send(answer);
    return true;
  };
  if (message.interface() == propertiesInterface) return reply(answerAboutProperties(message));
  if (!message.interface().isEmpty() && message.interface() != interface_.name) return false;
  const auto method = interface_.methods.find(message.member());
  if (method == interface_.methods.end() && message.interface().isEmpty()) return false;
  if (method == interface_.methods.end())
    return reply(message.createErrorReply(QDBusError::UnknownMethod, message.member()));
  if (message.signature() != method->second.input) return reply(invalidArguments(message));
  return reply(method->second.answer(message));
}

QDBusMessage BusObject::answerAboutProperties(const QDBusMessage& call) const {
  const bool isGet = call.member() == u"Get" && call.signature() == u"ss";
  const bool isGetAll = call.member() == u"GetAll" && call.signature() == u"s";
  if (call.member() == u"Set" && call.signature() == u"ssv")
    return call.createErrorReply(QDBusError::PropertyReadOnly, QStringLiteral("Read only"));
  if (!isGet && !isGetAll) return invalidArguments(call);
  const auto interface = call.arguments().at(0).toString();
  if (!interface.isEmpty() && interface != interface_.name)
    return call.createErrorReply(QDBusError::UnknownInterface, interface);
  if (isGetAll) return call.createReply(QVariant(interface_.properties));
  const auto name = call.arguments().at(1).toString();
  const auto property = interface_.properties.find(name);
  if (property == interface_.properties.end())
    return call.createErrorReply(QDBusError::UnknownProperty, name);
  return call.createReply(QVariant::fromValue(QDBusVariant(*property)));
}

}  // namespace valdrix::desktop
