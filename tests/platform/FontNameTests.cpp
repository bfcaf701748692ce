#include "platform/FontName.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrin {

namespace {

struct Example {
    std::string text;
    std::optional<FontName> font;
};

void expectEach(std::initializer_list<Example> examples, std::optional<FontName> (*read)(std::string_view)) {
    for (const Example& example : examples) {
        const auto found = read(example.text);
        EXPECT_EQ(found, example.font) << example.text << " was read as "
                                       << (found ? found->family + " " + std::to_string(found->points) : "nothing");
    }
}

} // namespace

TEST(AFontOfGTK, isAFamilyWithASize) {
    expectEach(
        {
            {"Cantarell 11", FontName{"Cantarell", 11}},
            {"Sans 10", FontName{"Sans", 10}},
            {"  DejaVu Sans   9.5 ", FontName{"DejaVu Sans", 9.5}},
            {"Source Sans 3 10", FontName{"Source Sans 3", 10}},
            {"Sans 16px", FontName{"Sans", 12}},
            {"11", FontName{"", 11}},
        },
        fontFromPango);
}

TEST(AFontOfGTK, losesItsStyles) {
    expectEach(
        {
            {"Noto Sans Bold 10.5", FontName{"Noto Sans", 10.5}},
            {"Noto Sans Semi-Bold Italic Condensed 12", FontName{"Noto Sans", 12}},
            {"Ubuntu medium 11", FontName{"Ubuntu", 11}},
            {"Bold 12", FontName{"", 12}},
            {"Cantarell 11 @wght=300,wdth=80", FontName{"Cantarell", 11}},
            {"Cantarell 11 @wght=300 #tnum=1", FontName{"Cantarell", 11}},
        },
        fontFromPango);
}

TEST(AFontOfGTK, keepsAFamilyThatACommaEnds) {
    expectEach(
        {
            {"Roboto Condensed, 10", FontName{"Roboto Condensed", 10}},
            {"Roboto Condensed, Bold 10", FontName{"Roboto Condensed", 10}},
            {"Cantarell,Sans Bold 10", FontName{"Cantarell", 10}},
        },
        fontFromPango);
}

TEST(AFontOfGTK, isNothingWhenDamaged) {
    expectEach(
        {
            {"", {}},
            {" ", {}},
            {"Cantarell", {}},
            {"Cantarell 0", {}},
            {"Cantarell -11", {}},
            {"Cantarell 1e1", {}},
            {"Cantarell nan", {}},
            {"Cantarell inf", {}},
            {"Cantarell 11pt", {}},
            {"Cantarell 99999", {}},
            {"Cantarell px", {}},
            {"Cantarell 11,5", {}},
            {"Canta\nrell 11", {}},
            {std::string("Canta\0rell 11", 13), {}},
            {"@wght=300", {}},
            {std::string(100000, ' '), {}},
        },
        fontFromPango);
}

TEST(AFontOfPlasma, isReadAsQt5AndQt6WriteIt) {
    expectEach(
        {
            {"Noto Sans,10,-1,5,50,0,0,0,0,0", FontName{"Noto Sans", 10}},
            {"Noto Sans,11.5,-1,5,400,0,0,0,0,0,0,0,0,0,0,1", FontName{"Noto Sans", 11.5}},
            {"Inter Display,9,-1,5,700,1,0,0,0,0,0,0,0,0,0,1,Bold Italic", FontName{"Inter Display", 9}},
            {"Hack,-1,16,5,50,0,0,0,0,0", FontName{"Hack", 12}},
        },
        fontFromQt);
}

TEST(AFontOfPlasma, isNothingWhenDamaged) {
    expectEach(
        {
            {"", {}},
            {"Noto Sans", {}},
            {"Noto Sans,10,-1,5,50,0,0,0,0", {}},
            {",10,-1,5,50,0,0,0,0,0", {}},
            {"Noto Sans,ten,-1,5,50,0,0,0,0,0", {}},
            {"Noto Sans,0,0,5,50,0,0,0,0,0", {}},
            {"Noto Sans,1e300,-1,5,50,0,0,0,0,0", {}},
            {"Noto\tSans,10,-1,5,50,0,0,0,0,0", {}},
            {",,,,,,,,,,,,,,,,", {}},
        },
        fontFromQt);
}

} // namespace kestrin
