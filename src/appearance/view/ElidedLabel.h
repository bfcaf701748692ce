#pragma once

#include "appearance/view/ThemedLabel.h"

namespace kestrin {

/// One line of plain text that ends in "…" where it does not fit; the whole text is then its tool tip, and always
/// its accessible name. It can become narrower than its text.
class ElidedLabel : public ThemedLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(
        TextStyle style = TextStyle::body, ColorRole color = ColorRole::text, QWidget* parent = nullptr);

    void setFullText(const QString& text);
    [[nodiscard]] const QString& fullText() const { return fullText_; }
    [[nodiscard]] bool isElided() const { return text() != fullText_; }
    /// By mouse and keyboard; a copy that includes the "…" includes the rest of the text instead.
    void setSelectable(bool selectable);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void elide();

    QString fullText_;
};

} // namespace kestrin
