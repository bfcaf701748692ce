#include "appearance/view/ButtonKind.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEvent>
#include <QToolButton>
#include <QVariant>

namespace kestrin {

namespace {

constexpr auto kindProperty = "kestrinButtonKind";
constexpr auto symbolProperty = "kestrinButtonSymbol";

void refresh(QAbstractButton* button) {
    // A button keeps its size hint until its text changes or its style says so.
    QEvent change(QEvent::StyleChange);
    QCoreApplication::sendEvent(button, &change);
}

} // namespace

void setButtonKind(QAbstractButton* button, ButtonKind kind) {
    button->setProperty(kindProperty, static_cast<int>(kind));
    refresh(button);
}

ButtonKind buttonKind(const QWidget* button) {
    const QVariant kind = button ? button->property(kindProperty) : QVariant();
    if (kind.isValid()) return static_cast<ButtonKind>(kind.toInt());
    return qobject_cast<const QToolButton*>(button) ? ButtonKind::flat : ButtonKind::plain;
}

void setButtonSymbol(QAbstractButton* button, const QString& name) {
    button->setProperty(symbolProperty, name);
    refresh(button);
}

QString buttonSymbol(const QWidget* button) {
    return button ? button->property(symbolProperty).toString() : QString();
}

} // namespace kestrin
