#pragma once

#include "appearance/view/Theme.h"

#include <QWidget>
#include <optional>

namespace kestrin {

/// A widget whose lengths, fonts and colours come from the current theme and follow it. A subclass calls
/// `followTheme` at the end of its constructor. Main thread only.
class ThemedWidget : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void changeEvent(QEvent* event) override;
    void followTheme();
    /// Sets whatever depends on the theme. Painting reads the theme by itself.
    virtual void applyTheme(const Theme& theme) = 0;

private:
    std::optional<Theme> applied_;
};

} // namespace kestrin
