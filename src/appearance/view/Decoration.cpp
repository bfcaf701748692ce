#include "appearance/view/Decoration.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace kestrin {

namespace {

constexpr auto decorationProperty = "kestrinDecoration";

class DecorationInterface : public QAccessibleWidget {
public:
    explicit DecorationInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Graphic) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.invisible = true;
        return state;
    }
    QString text(QAccessible::Text) const override { return {}; }
};

QAccessibleInterface* decorationFactory(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    return widget && widget->property(decorationProperty).toBool() ? new DecorationInterface(widget) : nullptr;
}

} // namespace

void hideFromScreenReaders(QWidget* widget) {
    static const bool installed = (QAccessible::installFactory(decorationFactory), true);
    Q_UNUSED(installed);
    widget->setProperty(decorationProperty, true);
}

} // namespace kestrin
