#include "desktop/screens/CameraHousings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtEndian>

#include "desktop/screens/PathBounds.h"
#include "desktop/session/WholeFile.h"

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

view::Rect centredCutout(double width, view::Size size) {
  return {(width - size.width) / 2, 0, size.width, size.height};
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

/// A cutout of a panel of that size in pixels, in points of the screen. None for a picture of
/// another shape, which does not reach the housing: the rows beside it are left dark.
std::optional<view::Rect> onScreen(const view::Rect& cutout, view::Size panel,
                                   const platform::Screen& screen) {
  const double factor = screen.frame.width / panel.width;
  // Desktops cut fractions of a point off both sides.
  if (std::abs(panel.height * factor - screen.frame.height) > 1.5) return std::nullopt;
  return view::Rect{cutout.x * factor, cutout.y * factor, cutout.width * factor,
                    cutout.height * factor};
}

FileContent contents(const QString& path) {
  constexpr std::size_t largest = std::size_t{1} << 20;
  if (path.isEmpty()) return {FileContent::Status::missing, {}};
  return readWholeFile(QFile::encodeName(path).toStdString(), largest);
}

QByteArray bytes(const QString& path) { return QByteArray::fromStdString(contents(path).bytes); }

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

CameraHousings::CameraHousings(const Sources& sources) : sources_(sources) {
  readNotch(sources.notch);
  readFile();
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
    notchProblems_.emplace_back("VALDRIX_NOTCH : une taille s'écrit comme 200x32");
}

void CameraHousings::readFile() {
  userPanels_.clear();
  fileProblems_.clear();
  const auto content = contents(sources_.userFile);
  const auto text = QByteArray::fromStdString(content.bytes);
  using enum FileContent::Status;
  if (content.status == unreadable || content.status == tooLarge)
    return complain(text, {}, "il faut un fichier lisible d'un mébioctet au plus");
  if (text.isEmpty()) return;
  QJsonParseError error;
  const auto document = QJsonDocument::fromJson(text, &error);
  if (error.error != QJsonParseError::NoError) {
    fileProblems_.push_back(QStringLiteral("%1:%2 : ce n'est pas du JSON (%3)")
                                .arg(sources_.userFile)
                                .arg(lineOf(text, error.offset))
                                .arg(error.errorString())
                                .toStdString());
    return;
  }
  if (document.isObject()) readPanel(document.object(), text);
  for (const auto panel : document.array()) readPanel(panel.toObject(), text);
}

void CameraHousings::complain(const QByteArray& text, const QString& mark, const char* reason) {
  const auto line = lineOf(text, mark.isEmpty() ? 0 : text.indexOf(mark.toUtf8()));
  fileProblems_.push_back(
      QStringLiteral("%1:%2 : ").arg(sources_.userFile).arg(line).toStdString() + reason);
}

void CameraHousings::readPanel(const QJsonObject& object, const QByteArray& text) {
  const auto name = object[QLatin1String("name")].toString();
  const double width = object[QLatin1String("x-res")].toDouble();
  const double height = object[QLatin1String("y-res")].toDouble();
  if (!(width >= 1 && height >= 1))
    return complain(text, name, "il faut x-res et y-res, la taille de l'écran en pixels");
  if (const auto cutout = readCutouts(object, text))
    userPanels_.push_back({width, height, *cutout, name.toStdString()});
}

std::optional<view::Rect> CameraHousings::readCutouts(const QJsonObject& panel,
                                                      const QByteArray& text) {
  const double height = panel[QLatin1String("y-res")].toDouble();
  view::Rect united;
  for (const auto cutout : panel[QLatin1String("cutouts")].toArray()) {
    const auto outline = cutout.toObject()[QLatin1String("path")].toString();
    const auto bounds = pathBounds(outline.toStdString());
    if (!bounds) {
      complain(text, outline, "path n'est pas un tracé SVG, ou ne dessine rien");
      continue;
    }
    // Only what hangs from the top edge is a housing; others are holes for something else.
    const bool isAtTop = bounds->minY() < height / 10 && bounds->maxY() < height / 2;
    if (isAtTop) united = united.united(*bounds);
  }
  if (!united.isEmpty()) return united;
  complain(text, panel[QLatin1String("name")].toString(),
           "aucune découpe ne touche le bord du haut");
  return std::nullopt;
}

void CameraHousings::readSystem(const QString& root) {
  const QDir tree(root + QStringLiteral("/proc/device-tree"));
  const auto machine = bytes(tree.filePath(QStringLiteral("compatible"))).split('\0');
  for (const auto& known : knownPanels) {
    if (!machine.contains(known.compatible)) continue;
    const view::Size housing{static_cast<double>(known.housingWidth),
                             static_cast<double>(known.housingHeight)};
    knownPanels_.push_back({static_cast<double>(known.width), static_cast<double>(known.height),
                            centredCutout(known.width, housing), known.compatible});
  }
  // The boot loader leaves the rows beside the housing in the display coprocessor's node.
  const QDir soc(tree.filePath(QStringLiteral("soc")));
  for (const auto& node : soc.entryList({QStringLiteral("dcp*")}, QDir::Dirs)) {
    const auto value = bytes(soc.filePath(node + QStringLiteral("/apple,notch-height")));
    if (value.size() == 4) kernelNotchHeight_ = qFromBigEndian<quint32>(value.constData());
  }
}

std::optional<CameraHousings::Panel> CameraHousings::kernelPanel(
    const platform::Screen& screen) const {
  const double width = screen.frame.width * screen.scale;
  const double height = screen.frame.height * screen.scale;
  // A 16:10 picture leaves the rows beside the housing out, one on its side has them elsewhere.
  const bool isOnSide = height > width;
  if (!(kernelNotchHeight_ > 0) || isOnSide ||
      height - kernelNotchHeight_ < width * 0.625 - 1.5 * screen.scale)
    return std::nullopt;
  return Panel{
      width, height, centredCutout(width, {width * usualHousingShare, kernelNotchHeight_}), {}};
}

std::optional<CameraHousings::Housing> CameraHousings::find(
    const std::vector<platform::Screen>& screens) const {
  if (screens.empty()) return std::nullopt;
  const auto builtIn = std::ranges::find_if(screens, isBuiltIn);
  const auto& screen = builtIn == screens.end() ? screens.front() : *builtIn;
  const auto index = static_cast<std::size_t>(&screen - screens.data());
  if (const auto& size = preview_ ? preview_ : notch_)
    return Housing{index,
                   centredCutout(screen.frame.width, *size),
                   preview_ ? Origin::preview : Origin::environment,
                   {}};
  if (builtIn == screens.end()) return std::nullopt;
  const auto first = [&](const auto& panels, Origin origin) -> std::optional<Housing> {
    for (const auto& panel : panels)
      if (const auto cutout = onScreen(panel.cutout, {panel.width, panel.height}, screen))
        return Housing{index, *cutout, origin, panel.name};
    return std::nullopt;
  };
  if (auto housing = first(userPanels_, Origin::userFile)) return housing;
  if (auto housing = first(knownPanels_, Origin::table)) return housing;
  const auto panel = kernelPanel(screen);
  return panel ? first(std::array{*panel}, Origin::kernel) : std::nullopt;
}

void CameraHousings::applyTo(std::vector<platform::Screen>& screens) const {
  if (const auto housing = find(screens)) enter(screens[housing->screen], housing->cutout);
}

void CameraHousings::setPreview(std::optional<view::Size> size) {
  preview_ = size;
  observers_.notify();
}

std::filesystem::path CameraHousings::userFile() const { return sources_.userFile.toStdString(); }

void CameraHousings::reread() {
  readFile();
  observers_.notify();
}

Token CameraHousings::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

std::vector<std::string> CameraHousings::problems() const {
  auto all = notchProblems_;
  all.insert(all.end(), fileProblems_.begin(), fileProblems_.end());
  return all;
}

}  // namespace valdrix::desktop
