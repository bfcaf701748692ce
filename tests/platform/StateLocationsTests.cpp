#include "platform/StateLocations.h"

#include "platform/SavedEnvironment.h"

#include <gtest/gtest.h>

namespace kestrin {

class TheLocationsOfState : public testing::Test {
protected:
    TheLocationsOfState() {
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"})
            qunsetenv(name);
    }

    test::SavedEnvironment saved{"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"};
};

TEST_F(TheLocationsOfState, areInTheUsualPlacesOfTheHomeDirectory) {
    qputenv("HOME", "/home/anna");
    const auto found = StateLocations::find();
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stateRoot, "/home/anna/.local/share/Kestrin");
    EXPECT_EQ(found->legacyRoot, "/home/anna/.local/share/Harbor Watch");
    EXPECT_EQ(found->configuration, "/home/anna/.config/kestrin");
}

TEST_F(TheLocationsOfState, followTheDesktopsVariables) {
    qputenv("HOME", "/home/anna");
    qputenv("XDG_DATA_HOME", "/data");
    qputenv("XDG_CONFIG_HOME", "/configuration");
    const auto found = StateLocations::find();
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->stateRoot, "/data/Kestrin");
    EXPECT_EQ(found->configuration, "/configuration/kestrin");
}

TEST_F(TheLocationsOfState, areKnownWithoutAHomeDirectoryWhenTheDesktopNamesThemAll) {
    qputenv("XDG_DATA_HOME", "/data");
    qputenv("XDG_CONFIG_HOME", "/configuration");
    EXPECT_TRUE(StateLocations::find().has_value());
}

TEST_F(TheLocationsOfState, areUnknownWithoutAHomeDirectory) {
    const auto found = StateLocations::find();
    ASSERT_FALSE(found.has_value());
    EXPECT_EQ(found.error(), "Kestrin can’t find your home directory: HOME is not set.");
}

TEST_F(TheLocationsOfState, areUnknownWithARelativeHomeDirectory) {
    qputenv("HOME", "anna");
    const auto found = StateLocations::find();
    ASSERT_FALSE(found.has_value());
    EXPECT_EQ(found.error(), "Kestrin can’t find your home directory: HOME is not an absolute path.");
}

} // namespace kestrin
