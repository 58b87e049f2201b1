#include "commands/StatusReport.h"

#include <optional>
#include <string>
#include <vector>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include "notch/NotchScreen.h"
#include "notch/NotchViewModel.h"

namespace valdrix::commands {

namespace {

QString name(NotchPresentation presentation) {
  switch (presentation) {
    case NotchPresentation::volumeHUD:
      return "volumeHUD";
    case NotchPresentation::brightnessHUD:
      return "brightnessHUD";
    case NotchPresentation::expanded:
      return "expanded";
    case NotchPresentation::collapsed:
      break;
  }
  return "collapsed";
}

QJsonObject sizeObject(const view::Size& size) {
  return {{"width", size.width}, {"height", size.height}};
}

QJsonObject notchObject(const NotchViewModel& model) {
  return {{"presentation", name(model.presentation())},
          {"expandedSize", sizeObject(model.expandedSize)},
          {"volumeLevel", model.volumeLevel.get()},
          {"isMuted", model.isMuted.get()},
          {"brightnessLevel", model.brightnessLevel.get()}};
}

QString name(platform::EventAuthorization status) {
  switch (status) {
    case platform::EventAuthorization::restricted:
      return "restricted";
    case platform::EventAuthorization::denied:
      return "denied";
    case platform::EventAuthorization::fullAccess:
      return "fullAccess";
    case platform::EventAuthorization::writeOnly:
      return "writeOnly";
    case platform::EventAuthorization::notDetermined:
      break;
  }
  return "notDetermined";
}

QJsonValue optionalText(const std::optional<std::string>& text) {
  return text ? QJsonValue(QString::fromStdString(*text)) : QJsonValue();
}

QString isoText(platform::Instant instant) {
  return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), Qt::UTC)
      .toString(Qt::ISODate);
}

QJsonObject calendarObject(const CalendarService& service) {
  QJsonArray events;
  for (const auto& event : service.events())
    events.append(QJsonObject{
        {"title", optionalText(event.title)},
        {"start", isoText(event.startDate)},
        {"end", isoText(event.endDate)},
        {"isAllDay", event.isAllDay},
        {"calendar", event.calendar ? QString::fromStdString(event.calendar->title) : QString()},
    });
  QJsonArray calendars;
  for (const auto& calendar : service.availableCalendars())
    calendars.append(
        QJsonObject{{"identifier", QString::fromStdString(calendar.calendarIdentifier)},
                    {"title", QString::fromStdString(calendar.title)},
                    {"account", optionalText(calendar.sourceTitle)}});
  return {{"authStatus", static_cast<int>(service.authStatus())},
          {"authStatusName", name(service.authStatus())},
          {"events", events},
          {"calendars", calendars}};
}

QJsonArray screensArray(const platform::Screens& screens) {
  const auto chosen = panelScreen(screens);
  QJsonArray array;
  for (const auto& screen : screens.screens()) {
    const auto& frame = screen.frame;
    array.append(QJsonObject{
        {"name", QString::fromStdString(screen.name)},
        {"frame", QJsonArray{frame.x, frame.y, frame.width, frame.height}},
        {"scale", screen.scale},
        {"hasNotch", screen.safeAreaInsetTop > 0},
        {"notchSize", sizeObject(notchSize(screen))},
        {"hasPanel", chosen && *chosen == screen},
    });
  }
  return array;
}

QString name(desktop::KeyState state) {
  switch (state) {
    case desktop::KeyState::held:
      return "held";
    case desktop::KeyState::taken:
      return "taken";
    case desktop::KeyState::withheld:
      return "withheld";
    case desktop::KeyState::absent:
      return "absent";
    case desktop::KeyState::released:
      break;
  }
  return "released";
}

QString name(desktop::KeyCustody::Place place) {
  switch (place) {
    case desktop::KeyCustody::Place::entrusted:
      return "entrusted";
    case desktop::KeyCustody::Place::impossible:
      return "impossible";
    case desktop::KeyCustody::Place::desktop:
      break;
  }
  return "desktop";
}

QString word(platform::MediaKey key) {
  const auto text = platform::wordOf(key);
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QJsonObject custodyObject(const desktop::KeyCustody::State& custody) {
  QJsonObject places;
  for (const auto& [key, place] : custody.places) places[word(key)] = name(place);
  return {{"isAvailable", !custody.places.empty()},
          {"isEntrusted", custody.isEntrusted},
          {"isBusy", custody.isBusy},
          {"hasFailed", custody.hasFailed},
          {"places", places},
          {"note", QString::fromStdString(custody.note)}};
}

QJsonObject keysObject(const AppDelegate& app, const desktop::DesktopPlatform& platform) {
  const auto account = platform.mediaKeys().account();
  QJsonArray keys;
  for (const auto& entry : account.keys) {
    keys.append(QJsonObject{{"key", word(entry.key)},
                            {"isWanted", entry.isWanted},
                            {"state", name(entry.state)},
                            {"source", QString::fromStdString(entry.source)}});
  }
  return {{"isTapInstalled", app.mediaKeyMonitor().isTapInstalled()},
          {"isComplete", account.isComplete()},
          {"custody", custodyObject(platform.keyCustody().state())},
          {"keys", keys}};
}

QJsonArray texts(const std::vector<std::string>& all) {
  QJsonArray array;
  for (const auto& text : all) array.append(QString::fromStdString(text));
  return array;
}

}  // namespace

std::string statusReport(const AppDelegate& app, const desktop::DesktopPlatform& platform) {
  const auto& volume = app.volumeService();
  const auto& brightness = app.brightnessService();
  const QJsonObject report{
      {"version", VALDRIX_VERSION},
      {"notch", notchObject(app.viewModel())},
      {"volume", QJsonObject{{"deviceID", static_cast<qint64>(volume.deviceID())},
                             {"level", volume.level()},
                             {"isMuted", volume.isMuted()}}},
      {"brightness",
       QJsonObject{{"isAvailable", brightness.isAvailable()}, {"level", brightness.level()}}},
      {"mediaKeys", keysObject(app, platform)},
      {"calendar", calendarObject(app.calendarService())},
      {"screens", screensArray(platform.ports().screens)},
      {"housingProblems", texts(platform.housings().problems())},
      {"hasWindow", app.hasWindow()},
      {"framesDrawn", static_cast<qint64>(platform.windowSystem().framesDrawn())},
      {"backends", platform.backends()},
  };
  return QJsonDocument(report).toJson(QJsonDocument::Indented).trimmed().toStdString();
}

}  // namespace valdrix::commands
