#include "platform/XSettings.h"

#include <gtest/gtest.h>
#include <random>
#include <string_view>
#include <vector>

namespace kestrin {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Writes the property as a settings manager does, in either byte order.
class Property {
public:
    explicit Property(bool bigEndian = false) : bigEndian_(bigEndian) {
        bytes = {static_cast<std::uint8_t>(bigEndian), 0, 0, 0};
        number(77, 4);
        number(0, 4);
    }

    Property& integer(std::string_view name, std::int32_t value) {
        begin(0, name);
        number(static_cast<std::uint32_t>(value), 4);
        return *this;
    }

    Property& string(std::string_view name, std::string_view value) {
        begin(1, name);
        number(static_cast<std::uint32_t>(value.size()), 4);
        text(value);
        return *this;
    }

    Property& colour(std::string_view name) {
        begin(2, name);
        bytes.insert(bytes.end(), {1, 2, 3, 4, 5, 6, 7, 8});
        return *this;
    }

    void begin(std::uint8_t type, std::string_view name) {
        setCount(++count_);
        bytes.insert(bytes.end(), {type, 0});
        number(static_cast<std::uint32_t>(name.size()), 2);
        text(name);
        number(5, 4);
    }

    void setCount(std::uint32_t count) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes[8 + i] = static_cast<std::uint8_t>(count >> 8 * (bigEndian_ ? 3 - i : i));
    }

    void number(std::uint32_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> 8 * (bigEndian_ ? width - 1 - i : i)));
    }

    Bytes bytes;

private:
    void text(std::string_view value) {
        bytes.insert(bytes.end(), value.begin(), value.end());
        while (bytes.size() % 4 != 0)
            bytes.push_back(0);
    }

    bool bigEndian_;
    std::uint32_t count_ = 0;
};

Property ordinary(bool bigEndian) {
    Property property(bigEndian);
    property.string("Gtk/FontName", "Noto Sans 10").integer("Xft/DPI", 98304).colour("Gtk/Accent").integer("A", -1);
    return property;
}

} // namespace

TEST(XSettingsOfAManager, areReadInBothByteOrders) {
    const XSettings expected{{"Gtk/FontName", "Noto Sans 10"}, {"Xft/DPI", 98304}, {"A", -1}};
    EXPECT_EQ(parseXSettings(ordinary(false).bytes), expected);
    EXPECT_EQ(parseXSettings(ordinary(true).bytes), expected);
}

TEST(XSettingsOfAManager, mayBeNoneAtAll) {
    EXPECT_EQ(parseXSettings(Property().bytes), XSettings());
}

TEST(XSettingsOfAManager, mayHaveBytesBehindThem) {
    Property property;
    property.integer("A", 1).bytes.push_back(9);
    EXPECT_EQ(parseXSettings(property.bytes), (XSettings{{"A", 1}}));
}

TEST(HostileXSettings, areRefusedWhereverTheyAreCutOff) {
    const Bytes whole = ordinary(false).bytes;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // A copy of exactly that length, so that a sanitizer sees a read beyond it.
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(parseXSettings(cut), std::nullopt) << length;
    }
}

TEST(HostileXSettings, areRefusedWithAnUnknownByteOrderOrType) {
    Bytes order = ordinary(false).bytes;
    order[0] = 2;
    EXPECT_EQ(parseXSettings(order), std::nullopt);
    Property type;
    type.begin(3, "A");
    type.number(0, 4);
    EXPECT_EQ(parseXSettings(type.bytes), std::nullopt);
}

TEST(HostileXSettings, areRefusedWhenTheyAnnounceMoreThanThereIs) {
    Property many = ordinary(false);
    many.setCount(0xffffffff);
    EXPECT_EQ(parseXSettings(many.bytes), std::nullopt);
    Property longText;
    longText.begin(1, "A");
    for (const std::uint32_t length : {1U, 0x7fffffffU, 0xfffffffdU, 0xffffffffU}) {
        Property property = longText;
        property.number(length, 4);
        EXPECT_EQ(parseXSettings(property.bytes), std::nullopt) << length;
    }
}

TEST(HostileXSettings, areReadOrRefusedWhateverBytesTheyHave) {
    std::mt19937 random(1);
    const Bytes whole = ordinary(false).bytes;
    int read = 0;
    for (int turn = 0; turn < 20000; ++turn) {
        Bytes bytes = whole;
        for (int change = 0; change < 3; ++change)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random() % 8 == 0 ? random() : random() % 4);
        if (parseXSettings(bytes)) ++read;
    }
    EXPECT_GT(read, 0);
    EXPECT_LT(read, 20000);
}

} // namespace kestrin
