#pragma once

#include "platform/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <functional>
#include <optional>

namespace kestrin {

/// Serves org.kde.StatusNotifierItem on the object it is given as parent: what Kestrin's icon looks like, and the
/// clicks on it. The icon never changes with the monitoring state, so `Status` is always Active. Main thread. The
/// upper-case members are the protocol's.
class StatusNotifierAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ nothing)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<kestrin::StatusNotifierPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ description)
    Q_PROPERTY(QString OverlayIconName READ nothing)
    Q_PROPERTY(QList<kestrin::StatusNotifierPixmap> OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ nothing)
    Q_PROPERTY(QList<kestrin::StatusNotifierPixmap> AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ nothing)
    Q_PROPERTY(kestrin::StatusNotifierToolTip ToolTip READ toolTip)

public:
    explicit StatusNotifierAdaptor(QObject* parent);

    std::function<void(std::optional<QPoint>)> onActivate;
    std::function<void(const QString& token)> onActivationToken;

    [[nodiscard]] QString category() const;
    [[nodiscard]] QString id() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString status() const;
    [[nodiscard]] int windowId() const { return 0; }
    [[nodiscard]] QString nothing() const { return {}; }
    [[nodiscard]] QDBusObjectPath menu() const;
    [[nodiscard]] bool itemIsMenu() const { return false; }
    [[nodiscard]] QString iconName() const;
    [[nodiscard]] StatusNotifierPixmapList iconPixmap() const;
    [[nodiscard]] StatusNotifierPixmapList noPixmap() const { return {}; }
    [[nodiscard]] QString description() const;
    [[nodiscard]] StatusNotifierToolTip toolTip() const;

public Q_SLOTS:
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);
    void ProvideXdgActivationToken(const QString& token);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    StatusNotifierPixmapList pixmaps_;
};

} // namespace kestrin
