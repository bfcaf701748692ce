#include "platform/PopoverPlacement.h"

#include <algorithm>
#include <array>

namespace kestrin {

namespace {

// Between the popover and the panel, so that both read as separate.
constexpr int gap = 4;

/// `wanted`, moved so that a span of `length` fits between `first` and `last`; its start wins where it cannot.
int fitted(int wanted, int length, int first, int last) {
    return std::max(first, std::min(wanted, last - length + 1));
}

} // namespace

PanelEdge panelEdge(const ScreenArea& screen, std::optional<QPoint> click) {
    struct Strip {
        PanelEdge edge;
        int width;
        bool clicked;
    };
    const QRect& full = screen.full;
    const QRect& free = screen.available;
    const std::array strips{
        Strip{PanelEdge::Top, free.top() - full.top(), click && click->y() < free.top()},
        Strip{PanelEdge::Bottom, full.bottom() - free.bottom(), click && click->y() > free.bottom()},
        Strip{PanelEdge::Left, free.left() - full.left(), click && click->x() < free.left()},
        Strip{PanelEdge::Right, full.right() - free.right(), click && click->x() > free.right()},
    };
    // A click inside a strip names its panel, whatever other panels there are.
    for (const Strip& strip : strips)
        if (strip.clicked) return strip.edge;
    const auto widest = std::ranges::max_element(strips, {}, &Strip::width);
    if (widest->width > 0) return widest->edge;
    return click && click->y() > full.center().y() ? PanelEdge::Bottom : PanelEdge::Top;
}

QPoint popoverPosition(
    const QSize& popover, std::optional<QPoint> click, PanelEdge edge, const ScreenArea& screen) {
    const QRect& free = screen.available;
    const bool horizontal = edge == PanelEdge::Top || edge == PanelEdge::Bottom;
    const QPoint anchor = click.value_or(free.bottomRight());
    int x = anchor.x() - popover.width() / 2;
    int y = anchor.y() - popover.height() / 2;
    if (edge == PanelEdge::Top)
        y = free.top() + gap;
    else if (edge == PanelEdge::Bottom)
        y = free.bottom() + 1 - gap - popover.height();
    else if (edge == PanelEdge::Left)
        x = free.left() + gap;
    else
        x = free.right() + 1 - gap - popover.width();
    // A panel that reserves nothing or hides itself is clicked inside the free area: stay off the pointer.
    if (click && horizontal && free.contains(*click))
        y = edge == PanelEdge::Top ? std::max(y, click->y() + gap)
                                   : std::min(y, click->y() - gap - popover.height());
    else if (click && free.contains(*click))
        x = edge == PanelEdge::Left ? std::max(x, click->x() + gap)
                                    : std::min(x, click->x() - gap - popover.width());
    return {fitted(x, popover.width(), free.left(), free.right()),
        fitted(y, popover.height(), free.top(), free.bottom())};
}

std::optional<PlacedClick> placeClick(QPoint native, const QList<ScreenArea>& screens) {
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const ScreenArea& screen = screens[i];
        const QPoint origin = screen.full.topLeft();
        const QRect whole(origin, screen.full.size() * screen.devicePixelRatio);
        if (whole.contains(native)) return PlacedClick{origin + (native - origin) / screen.devicePixelRatio, i};
    }
    return std::nullopt;
}

} // namespace kestrin
