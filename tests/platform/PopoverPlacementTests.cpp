#include "platform/PopoverPlacement.h"

#include <gtest/gtest.h>

namespace kestrin {

namespace {

const QRect full(0, 0, 1280, 800);
const ScreenArea panelAtTop{full, full.adjusted(0, 30, 0, 0)};
const ScreenArea panelAtBottom{full, full.adjusted(0, 0, 0, -30)};
const ScreenArea panelAtLeft{full, full.adjusted(30, 0, 0, 0)};
const ScreenArea panelAtRight{full, full.adjusted(0, 0, -30, 0)};
const QSize popover(360, 500);

QPoint placed(const ScreenArea& screen, std::optional<QPoint> click) {
    return popoverPosition(popover, click, panelEdge(screen, click), screen);
}

} // namespace

TEST(ThePopover, hangsUnderAPanelAtTheTopCentredOnTheClick) {
    EXPECT_EQ(placed(panelAtTop, QPoint(640, 15)), QPoint(460, 34));
}

TEST(ThePopover, standsOnAPanelAtTheBottomCentredOnTheClick) {
    EXPECT_EQ(placed(panelAtBottom, QPoint(640, 785)), QPoint(460, 800 - 30 - 4 - 500));
}

TEST(ThePopover, standsBesideAPanelAtTheLeft) {
    EXPECT_EQ(placed(panelAtLeft, QPoint(15, 400)), QPoint(34, 150));
}

TEST(ThePopover, standsBesideAPanelAtTheRight) {
    EXPECT_EQ(placed(panelAtRight, QPoint(1265, 400)), QPoint(1280 - 30 - 4 - 360, 150));
}

TEST(ThePopover, staysOnTheScreenWhenTheClickIsInACorner) {
    EXPECT_EQ(placed(panelAtTop, QPoint(1275, 15)), QPoint(920, 34));
    EXPECT_EQ(placed(panelAtTop, QPoint(2, 15)), QPoint(0, 34));
    EXPECT_EQ(placed(panelAtRight, QPoint(1265, 795)), QPoint(886, 300));
    EXPECT_EQ(placed(panelAtLeft, QPoint(15, 3)), QPoint(34, 0));
}

TEST(ThePopover, goesToThePanelsEndWithoutAClick) {
    EXPECT_EQ(placed(panelAtTop, std::nullopt), QPoint(920, 34));
    EXPECT_EQ(placed(panelAtBottom, std::nullopt), QPoint(920, 266));
    EXPECT_EQ(placed(panelAtLeft, std::nullopt), QPoint(34, 300));
    EXPECT_EQ(placed(panelAtRight, std::nullopt), QPoint(886, 300));
}

TEST(ThePopover, keepsOffThePointerWhenThePanelReservesNothing) {
    const ScreenArea bare{full, full};
    EXPECT_EQ(placed(bare, QPoint(640, 15)), QPoint(460, 19));
    EXPECT_EQ(placed(bare, QPoint(640, 785)), QPoint(460, 281));
    EXPECT_EQ(placed(bare, std::nullopt), QPoint(920, 4));
}

TEST(ThePopover, startsAtTheTopLeftOfAScreenThatIsTooSmallForIt) {
    const ScreenArea small{{0, 0, 320, 240}, {0, 30, 320, 210}};
    EXPECT_EQ(placed(small, QPoint(300, 15)), QPoint(0, 30));
}

TEST(ThePopover, usesTheCoordinatesOfASecondScreen) {
    const QRect second(1280, 200, 1280, 800);
    const ScreenArea screen{second, second.adjusted(0, 30, 0, 0)};
    EXPECT_EQ(placed(screen, QPoint(2550, 210)), QPoint(2200, 234));
}

TEST(ThePanel, isTheClickedOneWhenThereAreTwo) {
    const ScreenArea both{full, full.adjusted(0, 60, 0, -30)};
    EXPECT_EQ(panelEdge(both, QPoint(600, 790)), PanelEdge::Bottom);
    EXPECT_EQ(panelEdge(both, QPoint(600, 10)), PanelEdge::Top);
    EXPECT_EQ(panelEdge(both, std::nullopt), PanelEdge::Top);
}

TEST(AClick, isScaledWithinItsScreen) {
    const QList<ScreenArea> screens{
        {{0, 0, 1280, 800}, {0, 30, 1280, 770}, 2.0}, {{2560, 0, 1920, 1080}, {2560, 30, 1920, 1050}, 1.0}};
    EXPECT_EQ(placeClick({2500, 20}, screens), (PlacedClick{{1250, 10}, 0}));
    EXPECT_EQ(placeClick({2600, 20}, screens), (PlacedClick{{2600, 20}, 1}));
    EXPECT_EQ(placeClick({9000, 20}, screens), std::nullopt);
}

} // namespace kestrin
