#pragma once

#include "appearance/view/ColorRole.h"
#include "content/StateColor.h"

#include <QWidget>
#include <variant>

namespace kestrin {

/// A symbol as decoration: a text beside it says the same, so screen readers do not see it. A state gives it the
/// state's mark colour.
class SymbolLabel : public QWidget {
    Q_OBJECT

public:
    /// The size is for scale 1.
    explicit SymbolLabel(
        const QString& name = {}, double size = 16, ColorRole color = ColorRole::text, QWidget* parent = nullptr);

    void setSymbol(const QString& name);
    void setSize(double size);
    void setColor(ColorRole color);
    void setColor(StateColor color);
    [[nodiscard]] const QString& symbol() const { return name_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    double size_;
    std::variant<ColorRole, StateColor> color_;
};

} // namespace kestrin
