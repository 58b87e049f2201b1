#include "commands/HousingReport.h"

#include <cmath>

#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QStringList>

#include "notch/NotchScreen.h"

namespace valdrix::commands {

namespace {

using Housing = desktop::CameraHousings::Housing;
using Origin = desktop::CameraHousings::Origin;

/// Maker and model of the screen with that connector; empty when nobody says.
QString model(const std::string& connector) {
  for (const auto* screen : QGuiApplication::screens())
    if (screen->name().toStdString() == connector)
      return QStringList{screen->manufacturer(), screen->model()}.join(' ').trimmed();
  return {};
}

QString origin(const Housing& housing, const desktop::CameraHousings& housings) {
  const auto panel = QString::fromStdString(housing.panel);
  switch (housing.origin) {
    case Origin::preview:
      return QStringLiteral("essayée par valdrix notch --preview");
    case Origin::environment:
      return QStringLiteral("d'après VALDRIX_NOTCH");
    case Origin::userFile:
      return QStringLiteral("d'après %1").arg(QString::fromStdString(housings.userFile().string()));
    case Origin::table:
      return QStringLiteral("d'après la table des écrans connus (%1)").arg(panel);
    case Origin::kernel:
      break;
  }
  return QStringLiteral("sa hauteur d'après le noyau, sa largeur estimée");
}

QString points(view::Size size) {
  return QStringLiteral("%1 × %2 points").arg(size.width).arg(size.height);
}

QString screenLine(const platform::Screen& screen) {
  const auto name = model(screen.name);
  return QStringLiteral("%1 : %2%3, échelle %4")
      .arg(QString::fromStdString(screen.name), name.isEmpty() ? name : name + ", ",
           points({screen.frame.width, screen.frame.height}))
      .arg(screen.scale);
}

/// What the user's file would say of a housing.
std::string fileEntry(const platform::Screen& screen, const view::Rect& cutout) {
  const auto pixels = [&](double length) { return std::round(length * screen.scale); };
  const auto path = QStringLiteral("M %1 0 H %2 V %3 H %1 Z")
                        .arg(pixels(cutout.minX()))
                        .arg(pixels(cutout.maxX()))
                        .arg(pixels(cutout.maxY()));
  const QString name = model(screen.name);
  const QJsonObject panel{{"name", name.isEmpty() ? QString::fromStdString(screen.name) : name},
                          {"x-res", pixels(screen.frame.width)},
                          {"y-res", pixels(screen.frame.height)},
                          {"cutouts", QJsonArray{QJsonObject{{"name", "camera"}, {"path", path}}}}};
  return QJsonDocument(panel).toJson(QJsonDocument::Indented).trimmed().toStdString();
}

}  // namespace

std::string housingReport(const desktop::DesktopPlatform& platform) {
  const auto screens = platform.ports().screens.screens();
  const auto& housings = platform.housings();
  const auto housing = housings.find(screens);
  const auto shown = panelScreen(platform.ports().screens);
  QStringList lines;
  for (std::size_t i = 0; i < screens.size(); ++i) {
    const auto& screen = screens[i];
    lines << screenLine(screen);
    lines << (housing && housing->screen == i
                  ? QStringLiteral("    encoche de %1, %2")
                        .arg(points(notchSize(screen)), origin(*housing, housings))
                  : QStringLiteral("    pas d'encoche connue"));
    if (shown && *shown == screen) lines << QStringLiteral("    valdrix s'y tient");
  }
  if (screens.empty()) lines << QStringLiteral("Aucun écran.");
  for (const auto& problem : housings.problems()) lines << QString::fromStdString(problem);
  return lines.join('\n').toStdString();
}

desktop::AgentAnswer previewHousing(desktop::DesktopPlatform& platform, view::Size size) {
  constexpr double mostPoints = 10000;
  const bool isSize =
      size.width > 0 && size.width <= mostPoints && size.height > 0 && size.height <= mostPoints;
  if (!isSize) return {false, "Ce n'est pas la taille d'une encoche."};
  const auto screens = platform.ports().screens.screens();
  if (screens.empty()) return {false, "Il n'y a pas d'écran."};
  auto& housings = platform.housings();
  housings.setPreview(size);
  const auto housing = housings.find(screens);
  const auto& screen = screens[housing->screen];
  return {true, "Encoche de " + points(size).toStdString() + " essayée sur " + screen.name +
                    ". Si elle convient, ceci va dans " + housings.userFile().string() + " :\n\n" +
                    fileEntry(screen, housing->cutout) + '\n'};
}

}  // namespace valdrix::commands
