#pragma once

#include "fakes/HeldAnswer.h"
#include "notifications/NotificationObserving.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// Notifications that remember what they were told and answer at once, or when the test lets them. A call with a
/// stale lease gets the inert state at once, as everywhere.
class FakeNotifications : public NotificationObserving {
public:
    struct Call {
        std::vector<NotificationObservation> observations; ///< none for a refresh
        NotificationInputs inputs;
        bool leaseWasValid = false;
        HeldAnswer<NotificationManagementState> answer;
    };

    bool holdsObserve = false;
    bool holdsRefresh = false;
    bool throws = false;               ///< breaks its promise that it does not
    NotificationManagementState state; ///< what is answered at once
    std::vector<std::shared_ptr<Call>> observeCalls;
    std::vector<std::shared_ptr<Call>> refreshCalls;

    Task<NotificationManagementState> observe(
        std::vector<NotificationObservation> observations, NotificationInputs inputs) override {
        return answer(receive(observeCalls, std::move(observations), std::move(inputs), holdsObserve));
    }

    Task<NotificationManagementState> refreshState(NotificationInputs inputs) override {
        return answer(receive(refreshCalls, {}, std::move(inputs), holdsRefresh));
    }

    /// A state that tests can tell from others.
    [[nodiscard]] static NotificationManagementState stateNamed(std::string name) {
        NotificationManagementState named;
        named.availability = NotificationsUnavailable{std::move(name)};
        return named;
    }

    void answerEverything() {
        holdsObserve = holdsRefresh = false;
        for (const auto* calls : {&observeCalls, &refreshCalls})
            for (const auto& call : *calls)
                call->answer.give(state);
    }

private:
    std::shared_ptr<Call> receive(std::vector<std::shared_ptr<Call>>& calls,
        std::vector<NotificationObservation> observations, NotificationInputs inputs, bool holds) const {
        if (throws) throw std::runtime_error("the notifications broke");
        auto call = std::make_shared<Call>();
        call->observations = std::move(observations);
        call->leaseWasValid = inputs.lease && inputs.lease->isValid();
        call->inputs = std::move(inputs);
        if (!call->leaseWasValid)
            call->answer.give({});
        else if (!holds)
            call->answer.give(state);
        calls.push_back(call);
        return call;
    }

    static Task<NotificationManagementState> answer(std::shared_ptr<Call> call) {
        auto wait = call->answer.wait();
        NotificationManagementState given = co_await wait;
        co_return given;
    }
};

} // namespace kestrin
