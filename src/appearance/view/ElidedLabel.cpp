#include "appearance/view/ElidedLabel.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <algorithm>

namespace kestrin {

ElidedLabel::ElidedLabel(TextStyle style, ColorRole color, QWidget* parent) : ThemedLabel(style, color, parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setFullText(const QString& text) {
    fullText_ = text;
    fullText_.replace(u'\n', u' ');
    setAccessibleName(fullText_);
    elide();
    updateGeometry();
}

void ElidedLabel::setSelectable(bool selectable) {
    setTextInteractionFlags(
        selectable ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard : Qt::NoTextInteraction);
}

QSize ElidedLabel::sizeHint() const {
    // One more, because a text is measured in fractions of a pixel.
    return QSize(fontMetrics().horizontalAdvance(fullText_) + 1, fontMetrics().height());
}

QSize ElidedLabel::minimumSizeHint() const {
    const int few = fontMetrics().averageCharWidth() * 6;
    return QSize(std::min(few, sizeHint().width()), fontMetrics().height());
}

void ElidedLabel::changeEvent(QEvent* event) {
    ThemedLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) elide();
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    ThemedLabel::resizeEvent(event);
    elide();
}

void ElidedLabel::keyPressEvent(QKeyEvent* event) {
    const bool reachesEllipsis = hasSelectedText() && selectionStart() + selectedText().size() >= text().size();
    if (event->matches(QKeySequence::Copy) && isElided() && reachesEllipsis) {
        QGuiApplication::clipboard()->setText(fullText_.mid(selectionStart()));
        event->accept();
        return;
    }
    ThemedLabel::keyPressEvent(event);
}

void ElidedLabel::contextMenuEvent(QContextMenuEvent* event) {
    // Its Copy would copy the ellipsis.
    if (isElided())
        event->ignore();
    else
        ThemedLabel::contextMenuEvent(event);
}

void ElidedLabel::elide() {
    const QString shown = fontMetrics().elidedText(fullText_, Qt::ElideRight, width());
    if (shown != text()) setText(shown);
    const QString tip = isElided() ? fullText_ : QString();
    // The text is foreign. Qt would interpret text that looks like markup as rich text.
    const QString plain = Qt::mightBeRichText(tip) ? Qt::convertFromPlainText(tip) : tip;
    if (plain != toolTip()) setToolTip(plain);
}

} // namespace kestrin
