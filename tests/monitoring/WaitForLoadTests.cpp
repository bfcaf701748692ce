#include "monitoring/MonitorHarness.h"

namespace kestrin {
namespace {

class WaitForLoad : public MonitorTest {
protected:
    [[nodiscard]] TaskHandle<> wait() { return tasks.spawn(main, model->loaded()); }
};

TEST_F(WaitForLoad, endsAtOnceWhenNoLoadRuns) {
    load(configurationOf({"a"}));
    const TaskHandle<> waiting = wait();
    main.runUntilIdle();
    EXPECT_TRUE(waiting.done());
}

TEST_F(WaitForLoad, endsWhenTheLoadHasBeenApplied) {
    writeSites(configurationOf({"a"}));
    create();
    const TaskHandle<> waiting = wait();
    main.runUntilIdle();
    EXPECT_FALSE(waiting.done());
    settle();
    EXPECT_TRUE(waiting.done());
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(model->snapshots().size(), 1U);
}

TEST_F(WaitForLoad, goesOnUntilNotificationsHaveAnswered) {
    notifications.holdsRefresh = true;
    create();
    const TaskHandle<> waiting = wait();
    settle();
    EXPECT_FALSE(waiting.done());
    notifications.answerEverything();
    settle();
    EXPECT_TRUE(waiting.done());
}

TEST_F(WaitForLoad, goesOnThroughALoadThatBeginsMeanwhile) {
    writeSites(configurationOf({"a"}));
    create();
    const TaskHandle<> waiting = wait();
    main.runUntilIdle();
    writeSites(configurationOf({"b"}));
    model->reload();
    main.runUntilIdle();
    loads.finish(0);
    main.runUntilIdle();
    EXPECT_FALSE(waiting.done());
    settle();
    EXPECT_TRUE(waiting.done());
    EXPECT_EQ(snapshot("b").site.id, "b");
}

TEST_F(WaitForLoad, goesOnThroughTheLoadThatFollowsAChoiceOverAForeignEdit) {
    load(configurationOf({"a", "b"}));
    writeSites(configurationOf({"a", "b", "c"}));
    model->selectSite("b");
    const TaskHandle<> waiting = wait();
    main.runUntilIdle();
    EXPECT_FALSE(waiting.done());
    settle();
    EXPECT_TRUE(waiting.done());
    EXPECT_EQ(model->snapshots().size(), 3U);
}

TEST_F(WaitForLoad, endsAfterALoadThatFailed) {
    writeSitesText("nonsense");
    create();
    const TaskHandle<> waiting = wait();
    settle();
    EXPECT_TRUE(waiting.done());
    EXPECT_TRUE(model->loadError().has_value());
}

TEST_F(WaitForLoad, endsWhenTheProgramShutsDown) {
    notifications.holdsRefresh = true;
    create();
    const TaskHandle<> waiting = wait();
    settle();
    model->shutdown();
    notifications.answerEverything();
    settle();
    EXPECT_TRUE(waiting.done());
}

TEST_F(WaitForLoad, endsAfterTheModel) {
    create();
    const TaskHandle<> waiting = wait();
    main.runUntilIdle();
    model.reset();
    settle();
    EXPECT_TRUE(waiting.done());
}

} // namespace
} // namespace kestrin
