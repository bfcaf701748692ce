#include "text/HostTimeZone.h"

#include "fakes/TemporaryDirectory.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace kestrin {
namespace {

/// Sets TZ for the life of a test; absent takes it away.
class TimeZoneSetting {
public:
    explicit TimeZoneSetting(const std::optional<std::string>& value) {
        if (const char* earlier = std::getenv("TZ")) earlier_ = earlier;
        set(value);
    }
    ~TimeZoneSetting() { set(earlier_); }
    TimeZoneSetting(const TimeZoneSetting&) = delete;
    TimeZoneSetting& operator=(const TimeZoneSetting&) = delete;

    static void set(const std::optional<std::string>& value) {
        if (value)
            ::setenv("TZ", value->c_str(), 1);
        else
            ::unsetenv("TZ");
    }

private:
    std::optional<std::string> earlier_;
};

struct HostTimeZone : ::testing::Test {
    const TimeZoneSetting setting{std::nullopt};
    const TemporaryDirectory directory;
    const std::filesystem::path link = directory / "localtime";

    void pointTo(const std::string& target) const {
        std::filesystem::remove(link);
        std::filesystem::create_symlink(target, link);
    }
    [[nodiscard]] std::string name() const { return hostTimeZoneName(link.c_str()); }
};

TEST_F(HostTimeZone, isWhatTheLinkPointsTo) {
    pointTo("/usr/share/zoneinfo/Europe/Berlin");
    EXPECT_EQ(name(), "Europe/Berlin");
    pointTo("../usr/share/zoneinfo/posix/America/Argentina/Buenos_Aires");
    EXPECT_EQ(name(), "America/Argentina/Buenos_Aires");
}

TEST_F(HostTimeZone, aChangeShowsAtOnce) {
    pointTo("/usr/share/zoneinfo/Europe/Berlin");
    EXPECT_EQ(name(), "Europe/Berlin");
    pointTo("/usr/share/zoneinfo/Asia/Tokyo");
    EXPECT_EQ(name(), "Asia/Tokyo");
}

TEST_F(HostTimeZone, theEnvironmentWinsOverTheLink) {
    pointTo("/usr/share/zoneinfo/Europe/Berlin");
    for (const char* value : {"Asia/Tokyo", ":Asia/Tokyo", "/usr/share/zoneinfo/Asia/Tokyo"}) {
        TimeZoneSetting::set(value);
        EXPECT_EQ(name(), "Asia/Tokyo") << value;
    }
    TimeZoneSetting::set("");
    EXPECT_EQ(name(), "Etc/UTC");
}

TEST_F(HostTimeZone, aRuleWithoutANameGivesItsOffset) {
    TimeZoneSetting::set("XYZ-5:30");
    EXPECT_EQ(name(), "GMT+05:30");
    TimeZoneSetting::set("XYZ3");
    EXPECT_EQ(name(), "GMT-03:00");
}

TEST_F(HostTimeZone, withoutALinkItIsAnOffset) {
    EXPECT_TRUE(name().starts_with("GMT")) << name();
    pointTo("/somewhere/that/names/no/zone");
    EXPECT_TRUE(name().starts_with("GMT")) << name();
}

} // namespace
} // namespace kestrin
