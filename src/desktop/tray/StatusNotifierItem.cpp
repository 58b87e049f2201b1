#include "desktop/tray/StatusNotifierItem.h"

#include <utility>

#include <QDBusObjectPath>
#include <QIcon>
#include <QtEndian>

#include "desktop/tray/StatusNotifierTypes.h"
#include "desktop/tray/TrayImage.h"

namespace valdrix::desktop {

namespace {

// Drawn for each size at which bars show icons, at scales 1 and 2.
constexpr int iconSizes[] = {16, 22, 24, 32, 44, 48, 64};

StatusNotifierPixmap pixmap(const QImage& picture) {
  const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
  QByteArray pixels(image.sizeInBytes(), Qt::Uninitialized);
  qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, pixels.data());
  return {image.width(), image.height(), pixels};
}

QList<StatusNotifierPixmap> pixmaps(const std::string& symbol) {
  QList<StatusNotifierPixmap> all;
  for (const int size : iconSizes) all.append(pixmap(trayImage(symbol, size)));
  return all;
}

/// The icon theme's own drawing, which bars show in their own colour; empty where it has none.
QString themeIcon(const QString& title) {
  const QString name = title + QStringLiteral("-symbolic");
  return QIcon::hasThemeIcon(name) ? name : QString();
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const TrayLook& look, const QString& menuPath,
                                       Handlers handlers)
    : BusObject(QStringLiteral("/StatusNotifierItem")), handlers_(std::move(handlers)) {
  define(describe(look, menuPath));
}

BusObject::Interface StatusNotifierItem::describe(const TrayLook& look, const QString& menuPath) {
  registerStatusNotifierTypes();
  const QString title = QString::fromStdString(look.title);
  const auto noPixmaps = QVariant::fromValue(QList<StatusNotifierPixmap>());
  const auto ignore = [](const QDBusMessage&) {};
  return {
      .name = "org.kde.StatusNotifierItem",
      .methods = {{"Activate", method("ii", [this](const QDBusMessage&) { handlers_.activate(); })},
                  {"ContextMenu",
                   method("ii", [this](const QDBusMessage&) { handlers_.showMenu(); })},
                  {"SecondaryActivate", method("ii", ignore)},
                  {"Scroll", method("is", ignore)}},
      .properties = {{"Category", "ApplicationStatus"},
                     {"Id", title},
                     {"Title", title},
                     {"Status", "Active"},
                     {"WindowId", 0},
                     {"IconThemePath", QString()},
                     {"Menu", QVariant::fromValue(QDBusObjectPath(menuPath))},
                     {"ItemIsMenu", true},
                     {"IconName", themeIcon(title)},
                     {"IconPixmap", QVariant::fromValue(pixmaps(look.symbol))},
                     {"OverlayIconName", QString()},
                     {"OverlayIconPixmap", noPixmaps},
                     {"AttentionIconName", QString()},
                     {"AttentionIconPixmap", noPixmaps},
                     {"AttentionMovieName", QString()},
                     {"ToolTip",
                      QVariant::fromValue(StatusNotifierToolTip{{}, {}, title, QString()})}},
      .signalsOut = {{"NewTitle", ""},
                     {"NewIcon", ""},
                     {"NewAttentionIcon", ""},
                     {"NewOverlayIcon", ""},
                     {"NewToolTip", ""},
                     {"NewStatus", "s"}},
  };
}

// What is asked for happens after the answer has gone out: it may end the program.
template <class Block>
BusObject::Method StatusNotifierItem::method(const char* signature, Block block) {
  return {signature, "", [this, block](const QDBusMessage& call) {
            QMetaObject::invokeMethod(
                &context_, [block, call] { block(call); }, Qt::QueuedConnection);
            return call.createReply();
          }};
}

}  // namespace valdrix::desktop
