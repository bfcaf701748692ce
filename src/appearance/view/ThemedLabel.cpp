#include "appearance/view/ThemedLabel.h"

#include "appearance/view/Theme.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace kestrin {

ThemedLabel::ThemedLabel(TextStyle style, ColorRole color, QWidget* parent)
    : QLabel(parent), style_(style), color_(color) {
    setTextFormat(Qt::PlainText);
    followTheme();
}

void ThemedLabel::setTextStyle(TextStyle style) {
    style_ = style;
    followTheme();
}

void ThemedLabel::setColor(ColorRole color) {
    color_ = color;
    followTheme();
}

void ThemedLabel::setColor(StateColor color) {
    color_ = color;
    followTheme();
}

void ThemedLabel::paintEvent(QPaintEvent* event) {
    if (textInteractionFlags() & (Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard))
        return QLabel::paintEvent(event);
    // QLabel would align an English text to the left of a layout from right to left.
    QPainter painter(this);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(contentsRect(),
        static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment())) | Qt::TextSingleLine, text());
}

void ThemedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::StyleChange) followTheme();
}

void ThemedLabel::followTheme() {
    const Theme& theme = currentTheme();
    const QColor color = std::holds_alternative<ColorRole>(color_) ? theme.color(std::get<ColorRole>(color_))
                                                                   : theme.stateText(std::get<StateColor>(color_));
    // Made empty, it leaves every other role to the application.
    QPalette own;
    own.setColor(QPalette::WindowText, color);
    own.setColor(QPalette::Disabled, QPalette::WindowText, theme.color(ColorRole::disabled));
    setPalette(own);
    setFont(theme.font(style_));
}

} // namespace kestrin
