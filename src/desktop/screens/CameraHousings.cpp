#include "desktop/screens/CameraHousings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtEndian>

#include "desktop/screens/PathBounds.h"

namespace valdrix::desktop {

namespace {

/// A panel by the compatible string of its machine's device tree. Sizes in pixels.
struct KnownPanel {
  const char* compatible;
  int width, height;
  int housingWidth, housingHeight;
};

// Laptops whose device trees are in Linux (arch/arm64/boot/dts/apple). Panel sizes are the makers'
// figures: 16:10 and the rows beside the housing. Housing widths are approximate; the user's file
// or VALDRIX_NOTCH corrects them.
constexpr KnownPanel knownPanels[] = {
    {"apple,j314s", 3024, 1964, 370, 64}, {"apple,j314c", 3024, 1964, 370, 64},
    {"apple,j316s", 3456, 2234, 370, 64}, {"apple,j316c", 3456, 2234, 370, 64},
    {"apple,j414s", 3024, 1964, 370, 64}, {"apple,j414c", 3024, 1964, 370, 64},
    {"apple,j416s", 3456, 2234, 370, 64}, {"apple,j416c", 3456, 2234, 370, 64},
    {"apple,j413", 2560, 1664, 312, 56},  {"apple,j415", 2880, 1864, 312, 56},
};

// Housings of laptops take this share of the panel's width when nothing more is known.
constexpr double usualHousingShare = 0.122;

bool isBuiltIn(const platform::Screen& screen) {
  return std::ranges::any_of(std::array{"eDP", "LVDS", "DSI"}, [&](const char* connector) {
    return screen.name.starts_with(connector);
  });
}

view::Rect centredHousing(double panelWidth, double width, double height) {
  return {(panelWidth - width) / 2, 0, width, height};
}

// `cutout` in points from the screen's top left.
void enter(platform::Screen& screen, const view::Rect& cutout) {
  const auto& frame = screen.frame;
  const double inset = std::clamp(cutout.maxY(), 0.0, frame.height);
  const double left = std::clamp(cutout.minX(), 0.0, frame.width);
  const double right = std::clamp(cutout.maxX(), left, frame.width);
  screen.safeAreaInsetTop = inset;
  screen.auxiliaryTopLeftArea = {frame.x, frame.maxY() - inset, left, inset};
  screen.auxiliaryTopRightArea = {frame.x + right, frame.maxY() - inset, frame.width - right,
                                  inset};
}

QByteArray contents(const QString& path) {
  if (path.isEmpty()) return {};
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.read(1 << 20) : QByteArray();
}

qsizetype lineOf(const QByteArray& text, qsizetype offset) {
  return text.left(std::max<qsizetype>(0, offset)).count('\n') + 1;
}

}  // namespace

CameraHousings::Sources CameraHousings::Sources::fromEnvironment() {
  const auto configuration =
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return {qEnvironmentVariable("VALDRIX_NOTCH"),
          configuration + QStringLiteral("/valdrix/housings.json"), QStringLiteral("/")};
}

CameraHousings::CameraHousings(const Sources& sources) {
  readNotch(sources.notch);
  readFile(sources.userFile);
  readSystem(sources.systemRoot);
}

void CameraHousings::readNotch(const QString& text) {
  if (text.isEmpty()) return;
  static const QRegularExpression form(
      QStringLiteral("^([0-9]{1,5}(?:\\.[0-9]+)?)x([0-9]{1,5}(?:\\.[0-9]+)?)$"));
  const auto match = form.match(text);
  const view::Size size{match.captured(1).toDouble(), match.captured(2).toDouble()};
  if (match.hasMatch() && size.width > 0 && size.height > 0)
    notch_ = size;
  else
    problems_.push_back("VALDRIX_NOTCH: not a size such as 200x32");
}

void CameraHousings::readFile(const QString& path) {
  const QByteArray text = contents(path);
  if (text.isEmpty()) return;
  QJsonParseError error;
  const auto document = QJsonDocument::fromJson(text, &error);
  if (error.error != QJsonParseError::NoError) {
    problems_.push_back(QStringLiteral("%1:%2: %3")
                            .arg(path)
                            .arg(lineOf(text, error.offset))
                            .arg(error.errorString())
                            .toStdString());
    return;
  }
  if (document.isObject()) readPanel(document.object(), text, path);
  for (const auto panel : document.array()) readPanel(panel.toObject(), text, path);
}

void CameraHousings::readPanel(const QJsonObject& object, const QByteArray& text,
                               const QString& path) {
  const auto name = object[QLatin1String("name")].toString();
  const auto complain = [&](const QString& mark, const char* reason) {
    const auto line = lineOf(text, mark.isEmpty() ? 0 : text.indexOf(mark.toUtf8()));
    problems_.push_back(QStringLiteral("%1:%2: ").arg(path).arg(line).toStdString() + reason);
  };
  Panel panel{
      object[QLatin1String("x-res")].toDouble(), object[QLatin1String("y-res")].toDouble(), {}};
  if (!(panel.width >= 1 && panel.height >= 1))
    return complain(name, "a panel needs x-res and y-res");
  for (const auto cutout : object[QLatin1String("cutouts")].toArray()) {
    const auto outline = cutout.toObject()[QLatin1String("path")].toString();
    const auto bounds = pathBounds(outline.toStdString());
    if (!bounds) {
      complain(outline, "a cutout's path is not one, or draws nothing");
      continue;
    }
    // Only what hangs from the top edge is a housing; others are holes for something else.
    const bool isAtTop = bounds->minY() < panel.height / 10 && bounds->maxY() < panel.height / 2;
    if (isAtTop) panel.cutout = panel.cutout.united(*bounds);
  }
  if (!panel.cutout.isEmpty()) panels_.push_back(panel);
}

void CameraHousings::readSystem(const QString& root) {
  const QDir tree(root + QStringLiteral("/proc/device-tree"));
  const auto machine = contents(tree.filePath(QStringLiteral("compatible"))).split('\0');
  for (const auto& known : knownPanels)
    if (machine.contains(known.compatible))
      panels_.push_back({static_cast<double>(known.width), static_cast<double>(known.height),
                         centredHousing(known.width, known.housingWidth, known.housingHeight)});
  // The boot loader leaves the rows beside the housing in the display coprocessor's node.
  const QDir soc(tree.filePath(QStringLiteral("soc")));
  for (const auto& node : soc.entryList({QStringLiteral("dcp*")}, QDir::Dirs)) {
    const auto value = contents(soc.filePath(node + QStringLiteral("/apple,notch-height")));
    if (value.size() == 4) kernelNotchHeight_ = qFromBigEndian<quint32>(value.constData());
  }
}

void CameraHousings::applyTo(std::vector<platform::Screen>& screens) const {
  auto screen = std::ranges::find_if(screens, isBuiltIn);
  if (notch_) {
    if (screen == screens.end()) screen = screens.begin();
    if (screen != screens.end())
      enter(*screen, centredHousing(screen->frame.width, notch_->width, notch_->height));
    return;
  }
  if (screen == screens.end()) return;
  if (std::ranges::any_of(panels_, [&](const Panel& panel) { return cutOut(*screen, panel); }))
    return;
  // A 16:10 picture leaves the rows beside the housing out.
  const double width = screen->frame.width * screen->scale;
  const double height = screen->frame.height * screen->scale;
  if (kernelNotchHeight_ > 0 && height - kernelNotchHeight_ >= width * 0.625 - 1)
    cutOut(*screen,
           {width, height, centredHousing(width, width * usualHousingShare, kernelNotchHeight_)});
}

// A picture of another shape does not reach the housing: the rows beside it are left dark.
bool CameraHousings::cutOut(platform::Screen& screen, const Panel& panel) {
  const double factor = screen.frame.width / panel.width;
  if (std::abs(panel.height * factor - screen.frame.height) * screen.scale > 1.5) return false;
  const auto& cutout = panel.cutout;
  enter(screen,
        {cutout.x * factor, cutout.y * factor, cutout.width * factor, cutout.height * factor});
  return true;
}

}  // namespace valdrix::desktop
