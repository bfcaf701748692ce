#include "appearance/view/Theme.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace kestrin {

namespace {

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The ratio of WCAG 2, from 1 to 21.
double contrast(const QColor& one, const QColor& other) {
    const double ratio = (luminance(one) + 0.05) / (luminance(other) + 0.05);
    return std::max(ratio, 1 / ratio);
}

QColor over(const QColor& color, double opacity, const QColor& ground) {
    const auto part = [&](double top, double bottom) {
        return static_cast<float>(top * opacity + bottom * (1 - opacity));
    };
    return QColor::fromRgbF(part(color.redF(), ground.redF()), part(color.greenF(), ground.greenF()),
        part(color.blueF(), ground.blueF()));
}

using enum ColorRole;

/// Which colours may lie on which grounds. What is not here may not meet.
struct Meeting {
    ColorRole color;
    std::vector<ColorRole> grounds;
    double least;
};

const std::vector<ColorRole> allGrounds{window, surface, raised, sidebar, well, fill, fillHover, fillPressed};

const std::vector<Meeting> meetings{
    {text, allGrounds, 4.5},
    {secondary, allGrounds, 4.5},
    {accent, allGrounds, 4.5},
    {onAccent, {accentFill, accentFillHover, accentFillPressed}, 4.5},
    {onDanger, {danger}, 4.5},
    {disabled, {surface}, 3},
    {control, {window, surface, raised}, 3},
    {accentFill, {window, surface}, 3},
    {danger, {window}, 3},
};

constexpr StateColor states[] = {
    StateColor::secondary, StateColor::green, StateColor::orange, StateColor::red, StateColor::blue};

class TheColors : public testing::TestWithParam<std::pair<bool, bool>> {
protected:
    const Theme theme = Theme::make({.dark = GetParam().first, .highContrast = GetParam().second});

    void expect(const QColor& color, const QColor& ground, double least, const std::string& what) const {
        EXPECT_GE(contrast(color, ground), least)
            << what << ": " << color.name().toStdString() << " on " << ground.name().toStdString();
    }
};

std::string nameOf(const testing::TestParamInfo<std::pair<bool, bool>>& info) {
    return std::string(info.param.first ? "dark" : "light") + (info.param.second ? "InHighContrast" : "");
}

INSTANTIATE_TEST_SUITE_P(OfEveryTheme, TheColors,
    testing::Values(std::pair(false, false), std::pair(true, false), std::pair(false, true), std::pair(true, true)),
    nameOf);

} // namespace

TEST_P(TheColors, canBeReadOnEveryGroundTheyMayLieOn) {
    for (const Meeting& meeting : meetings)
        for (const ColorRole ground : meeting.grounds)
            expect(theme.color(meeting.color), theme.color(ground), meeting.least,
                "role " + std::to_string(static_cast<int>(meeting.color)) + " on " +
                    std::to_string(static_cast<int>(ground)));
}

TEST_P(TheColors, ofStatesCanBeReadAsWordsOnCardsWindowsAndTheirOwnTint) {
    for (const StateColor state : states) {
        expect(theme.stateText(state), theme.color(surface), 4.5, "word on surface");
        expect(theme.stateText(state), theme.color(window), 4.5, "word on window");
        expect(theme.stateText(state), theme.stateTint(state, 0.12), 4.5, "word on its capsule");
    }
}

TEST_P(TheColors, ofStatesCanBeSeenAsSymbolsDiscsAndBars) {
    for (const StateColor state : states) {
        const QColor mark = theme.stateMark(state);
        expect(mark, theme.color(surface), 3, "symbol on surface");
        expect(mark, theme.color(window), 3, "symbol on window");
        expect(mark, theme.color(sidebar), 3, "symbol on sidebar");
        expect(mark, theme.accentTint(0.12, sidebar), 3, "symbol on a selection");
        expect(mark, theme.stateTint(state, 0.14), 3, "symbol on its disc");
        expect(over(mark, 0.82, theme.color(surface)), theme.color(surface), 3, "slot of a strip");
    }
    const auto bar = [&](StateColor state, double opacity) {
        expect(
            over(theme.stateMark(state), opacity, theme.color(surface)), theme.color(surface), 3, "bar of a chart");
    };
    bar(StateColor::green, 0.75);
    bar(StateColor::red, 0.8);
}

TEST_P(TheColors, canBeReadOnTheTintsOfTheAccent) {
    const QColor grounds[] = {theme.accentTint(0.12), theme.accentTint(0.12, sidebar),
        theme.accentTint(0.10, window), theme.accentTint(0.16, window)};
    for (const QColor& ground : grounds)
        for (const ColorRole role : {text, secondary, accent})
            expect(theme.color(role), ground, 4.5, "role " + std::to_string(static_cast<int>(role)));
}

TEST_P(TheColors, ofTheFocusRingStandOutFromWhatIsAroundIt) {
    for (const ColorRole ground : {window, surface, raised, sidebar, well})
        expect(theme.color(accent), theme.color(ground), 3, "ring");
}

TEST(HighContrast, turnsFaintLinesAndTextIntoText) {
    for (const bool dark : {false, true}) {
        const Theme theme = Theme::make({.dark = dark, .highContrast = true});
        for (const ColorRole role : {border, control, edge, secondary})
            EXPECT_EQ(theme.color(role), theme.color(text));
        EXPECT_EQ(theme.stateTint(StateColor::red, 0.12), theme.color(surface));
        EXPECT_EQ(theme.accentTint(0.12, sidebar), theme.color(surface));
        EXPECT_EQ(theme.ringWidth(), 3);
    }
}

} // namespace kestrin
