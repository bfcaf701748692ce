#pragma once

#include "dashboard/view/ThemedWidget.h"

#include <QString>

class QVBoxLayout;

namespace kestrin {

class Card;
class WrappedLabel;

/// A title with a card below it.
class Section : public ThemedWidget {
public:
    explicit Section(QWidget* parent = nullptr);
    void setTitle(const QString& title);
    /// The card's own layout, a column without margins.
    [[nodiscard]] QVBoxLayout* column() const { return column_; }

protected:
    void applyTheme(const Theme& theme) override;

private:
    QVBoxLayout* layout_;
    WrappedLabel* title_;
    Card* card_;
    QVBoxLayout* column_;
};

} // namespace kestrin
