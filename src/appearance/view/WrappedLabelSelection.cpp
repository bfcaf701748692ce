#include "appearance/view/WrappedLabel.h"

#include "appearance/view/FocusRing.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <cmath>

namespace kestrin {

void WrappedLabel::setSelectable(bool selectable) {
    selectable_ = selectable;
    setFocusPolicy(selectable ? Qt::StrongFocus : Qt::NoFocus);
    setProperty(focusRingProperty, selectable);
    if (selectable)
        setCursor(Qt::IBeamCursor);
    else
        unsetCursor();
    select(0, 0);
}

QString WrappedLabel::selection() const {
    return text().mid(std::min(anchor_, cursor_), std::abs(anchor_ - cursor_));
}

void WrappedLabel::forgetOtherSelection() {
    if (selectedFrom_ != text()) anchor_ = cursor_ = 0;
}

void WrappedLabel::select(int anchor, int cursor) {
    selectedFrom_ = text();
    const int end = static_cast<int>(text().size());
    anchor_ = std::clamp(anchor, 0, end);
    cursor_ = std::clamp(cursor, 0, end);
    update();
}

int WrappedLabel::positionAt(const QPointF& point) const {
    QTextLayout layout;
    layOut(layout, width());
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        if (point.y() < line.y() + line.height() || i + 1 == layout.lineCount()) return line.xToCursor(point.x());
    }
    return 0;
}

void WrappedLabel::mousePressEvent(QMouseEvent* event) {
    if (!selectable_ || event->button() != Qt::LeftButton) return ThemedLabel::mousePressEvent(event);
    const int position = positionAt(event->position());
    select(event->modifiers() & Qt::ShiftModifier ? anchor_ : position, position);
}

void WrappedLabel::mouseMoveEvent(QMouseEvent* event) {
    if (!selectable_ || !(event->buttons() & Qt::LeftButton)) return ThemedLabel::mouseMoveEvent(event);
    select(anchor_, positionAt(event->position()));
}

void WrappedLabel::mouseReleaseEvent(QMouseEvent* event) {
    if (!selectable_ || event->button() != Qt::LeftButton) return ThemedLabel::mouseReleaseEvent(event);
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && anchor_ != cursor_)
        clipboard->setText(selection(), QClipboard::Selection);
}

void WrappedLabel::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!selectable_ || event->button() != Qt::LeftButton) return ThemedLabel::mouseDoubleClickEvent(event);
    const QString whole = text();
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, whole);
    words.setPosition(positionAt(event->position()));
    if (!words.isAtBoundary() || words.position() == whole.size()) words.toPreviousBoundary();
    const auto start = words.position();
    const auto end = words.toNextBoundary();
    select(static_cast<int>(start), static_cast<int>(end < 0 ? whole.size() : end));
}

void WrappedLabel::keyPressEvent(QKeyEvent* event) {
    if (!selectable_) return ThemedLabel::keyPressEvent(event);
    forgetOtherSelection();
    QTextLayout layout;
    layOut(layout, width());
    const int end = static_cast<int>(text().size());
    const auto vertical = [&](int lines) {
        const QTextLine line = layout.lineForTextPosition(cursor_);
        const int target = line.lineNumber() + lines;
        if (target < 0) return 0;
        if (target >= layout.lineCount()) return end;
        return layout.lineAt(target).xToCursor(line.cursorToX(cursor_));
    };
    if (event->matches(QKeySequence::Copy) && anchor_ != cursor_)
        QGuiApplication::clipboard()->setText(selection());
    else if (event->matches(QKeySequence::SelectAll))
        select(0, end);
    else if (event->matches(QKeySequence::SelectNextChar))
        select(anchor_, layoutDirection() == Qt::LeftToRight ? layout.rightCursorPosition(cursor_)
                                                             : layout.leftCursorPosition(cursor_));
    else if (event->matches(QKeySequence::SelectPreviousChar))
        select(anchor_, layoutDirection() == Qt::LeftToRight ? layout.leftCursorPosition(cursor_)
                                                             : layout.rightCursorPosition(cursor_));
    else if (event->matches(QKeySequence::SelectNextWord))
        select(anchor_, layout.nextCursorPosition(cursor_, QTextLayout::SkipWords));
    else if (event->matches(QKeySequence::SelectPreviousWord))
        select(anchor_, layout.previousCursorPosition(cursor_, QTextLayout::SkipWords));
    else if (event->matches(QKeySequence::SelectNextLine))
        select(anchor_, vertical(1));
    else if (event->matches(QKeySequence::SelectPreviousLine))
        select(anchor_, vertical(-1));
    else if (event->matches(QKeySequence::SelectStartOfLine) || event->matches(QKeySequence::SelectStartOfDocument))
        select(anchor_, 0);
    else if (event->matches(QKeySequence::SelectEndOfLine) || event->matches(QKeySequence::SelectEndOfDocument))
        select(anchor_, end);
    else
        ThemedLabel::keyPressEvent(event);
}

void WrappedLabel::focusOutEvent(QFocusEvent* event) {
    ThemedLabel::focusOutEvent(event);
    // Otherwise two labels could show a selection, and Copy would take only one of them.
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) select(0, 0);
}

} // namespace kestrin
