#pragma once

#include "appearance/view/ThemedLabel.h"

#include <QTextLayout>

namespace kestrin {

/// Plain text that wraps at words, and within a word or URL that is too long for a line; it is never cut off. Its
/// height follows from its width.
class WrappedLabel : public ThemedLabel {
    Q_OBJECT

public:
    explicit WrappedLabel(
        TextStyle style = TextStyle::body, ColorRole color = ColorRole::text, QWidget* parent = nullptr);

    /// By mouse and keyboard: dragging, a double click for a word, Shift with the arrow keys, Select All and Copy.
    void setSelectable(bool selectable);
    /// Empty when nothing is selected.
    [[nodiscard]] QString selection() const;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    /// Fills the layout with lines of that width; returns the size they take.
    QSizeF layOut(QTextLayout& layout, double width) const;
    void prepare(QTextLayout& layout) const;
    [[nodiscard]] int positionAt(const QPointF& point) const;
    void select(int anchor, int cursor);

    bool selectable_ = false;
    /// Positions in another text mean nothing in this one.
    void forgetOtherSelection();

    int anchor_ = 0; ///< positions in the text; the selection lies between them
    int cursor_ = 0;
    QString selectedFrom_; ///< the text that they are positions in
};

} // namespace kestrin
