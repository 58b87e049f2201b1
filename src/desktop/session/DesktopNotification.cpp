#include "desktop/session/DesktopNotification.h"

#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

namespace valdrix::desktop {

namespace {

void send(const QDBusConnection& connection, const DesktopNotification::Text& text) {
  constexpr unsigned replacesNone = 0;
  constexpr int asLongAsUsual = -1;
  auto message = QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                                "/org/freedesktop/Notifications",
                                                "org.freedesktop.Notifications", "Notify");
  message << "valdrix" << replacesNone << "valdrix" << QString::fromStdString(text.title)
          << QString::fromStdString(text.body) << QStringList()
          << QVariantMap{{"desktop-entry", "valdrix"}} << asLongAsUsual;
  (void)connection.send(message);
}

}  // namespace

DesktopNotification::Text DesktopNotification::mediaKeysTaken() {
  return {"Touches de volume et de luminosité déjà prises",
          "Un autre programme, souvent ton bureau, a ces touches. La commande valdrix permissions "
          "montre comment valdrix peut les avoir."};
}

DesktopNotification::Text DesktopNotification::mediaKeysWithheld() {
  return {
      "Touches de volume et de luminosité",
      "Ce bureau ne donne ces touches à aucun programme. La commande valdrix permissions montre "
      "comment valdrix peut quand même les avoir."};
}

DesktopNotification::Text DesktopNotification::changesNotSaved() {
  return {
      "Réglages non enregistrés",
      "Leur fichier ne peut pas être écrit, ou le disque est plein. Tes changements valent tant "
      "que valdrix tourne."};
}

void DesktopNotification::show(const Text& text) {
  whenConnected_.reset();
  if (const auto& connection = bus_.connection()) return send(*connection, text);
  whenConnected_ = bus_.observeConnections([this, text](const QDBusConnection& connection) {
    send(connection, text);
    whenConnected_.reset();
  });
}

}  // namespace valdrix::desktop
