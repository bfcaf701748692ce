#include "dashboard/view/AccessibleItem.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace kestrin {

namespace {

constexpr const char* roleProperty = "kestrinAccessibleRole";

class AccessibleItem : public QAccessibleWidget {
public:
    AccessibleItem(QWidget* widget, QAccessible::Role role) : QAccessibleWidget(widget, role) {}
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    [[nodiscard]] QAccessibleInterface* focusChild() const override { return nullptr; }
};

QAccessibleInterface* accessibleItem(const QString& /*className*/, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    if (!role.isValid()) return nullptr;
    return new AccessibleItem(widget, static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void makeAccessibleItem(QWidget* widget, QAccessible::Role role) {
    static const bool installed = [] {
        QAccessible::installFactory(accessibleItem);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(roleProperty, static_cast<int>(role));
}

} // namespace kestrin
