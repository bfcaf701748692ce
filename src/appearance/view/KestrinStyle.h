#pragma once

#include <QProxyStyle>

namespace kestrin {

/// Draws the controls of both windows from the current theme: buttons, pickers, segments, switches, fields, scroll
/// bars, tool tips, items and the focus ring. What it does not know, Fusion draws with the theme's palette. Give it
/// to QApplication::setStyle. Main thread.
class KestrinStyle : public QProxyStyle {
    Q_OBJECT

public:
    KestrinStyle();

    void polish(QApplication* application) override;
    void polish(QWidget* widget) override;
    void polish(QPalette& palette) override;
    void unpolish(QApplication* application) override;
    void unpolish(QWidget* widget) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
        const QWidget* widget) const override;

    QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
        const QWidget* widget) const override;
    QSize sizeFromContents(
        ContentsType type, const QStyleOption* option, const QSize& size, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(
        StyleHint hint, const QStyleOption* option, const QWidget* widget, QStyleHintReturn* answer) const override;
};

} // namespace kestrin
