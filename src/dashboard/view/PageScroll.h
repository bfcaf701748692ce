#pragma once

#include "appearance/view/Theme.h"

#include <QScrollArea>
#include <functional>

class QVBoxLayout;

namespace kestrin {

/// Scrolls the pages of the dashboard. The style draws the scroll bar over the margin, so nothing moves when there
/// is more to scroll.
class PageScroll : public QScrollArea {
public:
    explicit PageScroll(QWidget* parent = nullptr);

    void addPage(QWidget* page);
    void showPage(QWidget* page);
    /// Puts a widget above the pages, where it scrolls with them. Adding it to another layout takes it back.
    void takeHeader(QWidget* header);
    /// The height at which nothing would have to scroll.
    [[nodiscard]] int naturalHeight(int width) const;
    [[nodiscard]] bool isScrolled() const;

    /// Called whenever the page has been scrolled.
    std::function<void()> onScrolled;

protected:
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void applyTheme();

    QWidget* content_;
    QVBoxLayout* outer_; ///< a header that scrolls, and below it the pages
    QVBoxLayout* layout_;
};

} // namespace kestrin
