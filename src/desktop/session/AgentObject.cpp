#include "desktop/session/AgentObject.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include "desktop/session/AgentNames.h"

namespace valdrix::desktop {

namespace {

SettingsRequest settingsRequest(SettingsRequest::Window window, const QVariantList& arguments) {
  const int tab = arguments[0].toInt();
  // What is below is no tab either, and refused with the others.
  return {tab == -1 ? std::nullopt : std::optional(static_cast<std::size_t>(tab)),
          ActivationToken(arguments[1].toString().toStdString()), window};
}

}  // namespace

struct AgentObject::Method {
  const char* name;
  /// The types of its arguments, in the notation of D-Bus.
  const char* signature;
  AgentAnswer (*call)(const Handlers& handlers, const QVariantList& arguments);
};

// The arguments of PressKey are the key's code, whether it moves by the fine step, whether it
// repeats, and whether it is debounced; those of OpenSettings and OpenPermissions a tab from 0, or
// -1, and a token that lets a window come to the front; those of PreviewHousing a width and a
// height in points.
const AgentObject::Method AgentObject::methods[] = {
    {"Status", "", [](const Handlers& to, const QVariantList&) { return to.status(); }},
    {"RequestCalendarAccess", "",
     [](const Handlers& to, const QVariantList&) { return to.requestCalendarAccess(); }},
    {"OpenSettings", "is",
     [](const Handlers& to, const QVariantList& with) {
       return to.openSettings(settingsRequest(SettingsRequest::Window::settings, with));
     }},
    {"OpenPermissions", "is",
     [](const Handlers& to, const QVariantList& with) {
       return to.openSettings(settingsRequest(SettingsRequest::Window::permissions, with));
     }},
    {"PressKey", "ubbb",
     [](const Handlers& to, const QVariantList& with) {
       return to.pressKey({with[0].toUInt(), with[1].toBool(), with[2].toBool(), with[3].toBool()});
     }},
    {"ShowVolume", "", [](const Handlers& to, const QVariantList&) { return to.showVolume(); }},
    {"ShowBrightness", "",
     [](const Handlers& to, const QVariantList&) { return to.showBrightness(); }},
    {"DescribeHousings", "",
     [](const Handlers& to, const QVariantList&) { return to.describeHousings(); }},
    {"PreviewHousing", "dd",
     [](const Handlers& to, const QVariantList& with) {
       return to.previewHousing({with[0].toDouble(), with[1].toDouble()});
     }},
    {"EntrustKeys", "", [](const Handlers& to, const QVariantList&) { return to.entrustKeys(); }},
    {"RestoreKeys", "", [](const Handlers& to, const QVariantList&) { return to.restoreKeys(); }},
    {"DescribeCustody", "",
     [](const Handlers& to, const QVariantList&) { return to.describeCustody(); }},
    {"Quit", "", [](const Handlers& to, const QVariantList&) { return to.quit(); }},
};

AgentObject::AgentObject(Handlers handlers) : handlers_(std::move(handlers)) {
  previewer_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
  QObject::connect(&previewer_, &QDBusServiceWatcher::serviceUnregistered, this,
                   [this] { endPreview(); });
  loss_.setSingleShot(true);
  QObject::connect(&loss_, &QTimer::timeout, this, [this] { endPreview(); });
}

void AgentObject::serve(QDBusConnection& connection) {
  connection.registerVirtualObject(AgentNames::path, this);
}

QString AgentObject::introspect(const QString&) const {
  QString text = QStringLiteral("<interface name=\"%1\">").arg(AgentNames::interface);
  for (const auto& method : methods) {
    text += QStringLiteral("<method name=\"%1\">").arg(method.name);
    for (const char* type = method.signature; *type != '\0'; ++type)
      text += QStringLiteral("<arg type=\"%1\" direction=\"in\"/>").arg(QLatin1Char(*type));
    text += QStringLiteral("<arg type=\"s\" direction=\"out\"/></method>");
  }
  return text + QStringLiteral("</interface>");
}

bool AgentObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (!message.interface().isEmpty() && message.interface() != AgentNames::interface) return false;
  const auto* const method =
      std::find_if(std::begin(methods), std::end(methods), [&](const Method& candidate) {
        return message.member() == candidate.name && message.signature() == candidate.signature;
      });
  if (method == std::end(methods)) return false;
  const auto answer = method->call(handlers_, message.arguments());
  const auto text = QString::fromStdString(answer.text);
  if (message.isReplyRequired())
    connection.send(answer.isDone ? message.createReply(text)
                                  : message.createErrorReply(AgentNames::refusal, text));
  if (answer.isDone && message.member() == "PreviewHousing")
    followPreviewer(message.service(), connection);
  return true;
}

void AgentObject::followPreviewer(const QString& name, QDBusConnection connection) {
  previewer_.setConnection(connection);
  previewer_.setWatchedServices({name});
  // The library's own signal of a lost connection wants a slot by name: a timer has one.
  connection.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                     "Disconnected", &loss_, SLOT(start()));
  // It may have left before the bus knew that we watch it.
  auto question = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                 "org.freedesktop.DBus", "NameHasOwner");
  question << name;
  auto* const answer = new QDBusPendingCallWatcher(connection.asyncCall(question), this);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, name] {
    answer->deleteLater();
    const QDBusPendingReply<bool> isThere = *answer;
    const bool isWatched = previewer_.watchedServices().contains(name);
    if (isWatched && isThere.isValid() && !isThere.value()) endPreview();
  });
}

void AgentObject::endPreview() {
  previewer_.setWatchedServices({});
  handlers_.endPreview();
}

}  // namespace valdrix::desktop
