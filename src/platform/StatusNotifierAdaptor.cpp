#include "platform/StatusNotifierAdaptor.h"

#include "platform/TrayImages.h"

#include <QPoint>

namespace kestrin {

StatusNotifierAdaptor::StatusNotifierAdaptor(QObject* parent) : QDBusAbstractAdaptor(parent) {
    registerStatusNotifierTypes();
    for (const QImage& image : trayImages())
        pixmaps_.append(StatusNotifierPixmap::fromImage(image));
}

QString StatusNotifierAdaptor::category() const {
    return QStringLiteral("ApplicationStatus");
}
QString StatusNotifierAdaptor::id() const {
    return QStringLiteral("kestrin");
}
QString StatusNotifierAdaptor::title() const {
    return QStringLiteral("Kestrin");
}
QString StatusNotifierAdaptor::status() const {
    return QStringLiteral("Active");
}
QDBusObjectPath StatusNotifierAdaptor::menu() const {
    return QDBusObjectPath(QStringLiteral("/MenuBar"));
}
QString StatusNotifierAdaptor::iconName() const {
    return installedSymbolicIconName();
}
StatusNotifierPixmapList StatusNotifierAdaptor::iconPixmap() const {
    return pixmaps_;
}
QString StatusNotifierAdaptor::description() const {
    return QStringLiteral("Kestrin: Harbor Watch");
}

StatusNotifierToolTip StatusNotifierAdaptor::toolTip() const {
    return {{}, {}, description(), {}};
}

void StatusNotifierAdaptor::Activate(int x, int y) {
    if (!onActivate) return;
    // Panels that do not know the place, on Wayland above all, send the origin.
    if (x == 0 && y == 0)
        onActivate(std::nullopt);
    else
        onActivate(QPoint(x, y));
}

void StatusNotifierAdaptor::SecondaryActivate(int x, int y) {
    Activate(x, y);
}

// Asked only by panels that cannot show the menu themselves. The dashboard leads to all that the menu offers.
void StatusNotifierAdaptor::ContextMenu(int x, int y) {
    Activate(x, y);
}

void StatusNotifierAdaptor::Scroll(int, const QString&) {}

void StatusNotifierAdaptor::ProvideXdgActivationToken(const QString& token) {
    if (onActivationToken) onActivationToken(token);
}

} // namespace kestrin
