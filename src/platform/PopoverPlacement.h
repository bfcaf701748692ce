#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

namespace kestrin {

enum class PanelEdge { Top, Bottom, Left, Right };

/// A screen in Qt's device-independent pixels. `available` leaves out the panels.
struct ScreenArea {
    QRect full;
    QRect available;
    qreal devicePixelRatio = 1;
};

/// The edge with the widest reserved strip. A screen without one has its panel at the top or, where the click lies
/// in the lower half, at the bottom.
[[nodiscard]] PanelEdge panelEdge(const ScreenArea& screen, std::optional<QPoint> click);

/// The top left corner of a popover: against the panel, centred on the click along it, and always wholly inside the
/// available area. Without a click it sits in the corner where panels keep their icons: at the right end of a
/// horizontal panel and the lower end of a vertical one. A popover larger than the screen starts at its top left
/// corner.
[[nodiscard]] QPoint popoverPosition(
    const QSize& popover, std::optional<QPoint> click, PanelEdge edge, const ScreenArea& screen);

/// A click in the native pixels of the whole desktop, told in Qt's pixels: Qt keeps the origin of every screen and
/// scales within it. Empty for a place that is on no screen.
struct PlacedClick {
    QPoint point;
    qsizetype screen = 0; ///< index into the list
    bool operator==(const PlacedClick&) const = default;
};
[[nodiscard]] std::optional<PlacedClick> placeClick(QPoint native, const QList<ScreenArea>& screens);

} // namespace kestrin
