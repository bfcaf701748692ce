#include "tasks/ChangeListeners.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace kestrin {
namespace {

class Listening : public testing::Test {
protected:
    ChangeListeners::Subscription add(const std::string& name) {
        return listeners->add([this, name] { heard += name; });
    }

    std::optional<ChangeListeners> listeners{std::in_place};
    std::string heard;
};

TEST_F(Listening, tellsEveryoneInTheOrderOfTheirComing) {
    const auto a = add("a");
    const auto b = add("b");
    listeners->announce();
    listeners->announce();
    EXPECT_EQ(heard, "abab");
}

TEST_F(Listening, endsWithTheSubscription) {
    auto a = add("a");
    {
        const auto b = add("b");
    }
    listeners->announce();
    a.end();
    listeners->announce();
    EXPECT_EQ(heard, "a");
}

TEST_F(Listening, movesWithTheSubscription) {
    auto a = add("a");
    ChangeListeners::Subscription other = add("b");
    other = std::move(a);
    listeners->announce();
    EXPECT_EQ(heard, "a");
}

TEST_F(Listening, toTheEndOfTheModelIsHarmless) {
    auto a = add("a");
    listeners.reset();
    a.end();
    EXPECT_EQ(heard, "");
}

TEST_F(Listening, letsAListenerRemoveItself) {
    ChangeListeners::Subscription once;
    once = listeners->add([&] {
        heard += "once";
        once.end();
        heard += ".";
    });
    const auto b = add("b");
    listeners->announce();
    listeners->announce();
    EXPECT_EQ(heard, "once.bb");
}

TEST_F(Listening, skipsOneThatAnEarlierOneRemoved) {
    ChangeListeners::Subscription second;
    const auto first = listeners->add([&] { second.end(); });
    second = add("second");
    listeners->announce();
    EXPECT_EQ(heard, "");
}

TEST_F(Listening, tellsOneThatWasAddedMeanwhileOfTheNextChange) {
    ChangeListeners::Subscription added;
    bool isAdded = false;
    const auto first = listeners->add([&] {
        if (!std::exchange(isAdded, true)) added = add("new");
    });
    listeners->announce();
    EXPECT_EQ(heard, "");
    listeners->announce();
    EXPECT_EQ(heard, "new");
}

} // namespace
} // namespace kestrin
