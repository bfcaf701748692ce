#pragma once

#include "fakes/HeldAnswer.h"
#include "monitoring/MonitoringCheckRunner.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace kestrin {

/// Checks that end when the test answers them, or at once where it says so. A cancelled check either goes on until
/// it is answered all the same, as a resolution that cannot be broken off does, or ends early without results.
class ScriptedCheckRunner {
public:
    enum class UponCancellation { KeepsWaiting, EndsEarly };

    template <class Definition, class Record> struct Call {
        std::vector<Definition> definitions;
        HeldAnswer<std::vector<Record>> answer;
        std::stop_token stopToken;
        bool ended = false;

        [[nodiscard]] bool isCancelled() const { return stopToken.stop_requested(); }
    };
    using SiteCall = Call<SiteDefinition, CheckRecord>;
    using ServiceCall = Call<ProviderDefinition, ProviderCheckRecord>;

    UponCancellation uponCancellation = UponCancellation::KeepsWaiting;
    /// When set, what is asked for is answered at once.
    std::function<std::vector<CheckRecord>(const std::vector<SiteDefinition>&)> siteResults;
    std::function<std::vector<ProviderCheckRecord>(const std::vector<ProviderDefinition>&)> serviceResults;

    /// Called for every list that is asked for, the moment it is.
    std::function<void()> onCall;

    /// Every list asked for, in order; an empty list too.
    std::vector<std::shared_ptr<SiteCall>> siteCalls;
    std::vector<std::shared_ptr<ServiceCall>> serviceCalls;

    [[nodiscard]] MonitoringCheckRunner runner() {
        MonitoringCheckRunner runner;
        runner.performSiteChecks = [this](std::vector<SiteDefinition> sites) {
            return perform(siteCalls, siteResults, std::move(sites));
        };
        runner.performProviderChecks = [this](std::vector<ProviderDefinition> services) {
            return perform(serviceCalls, serviceResults, std::move(services));
        };
        return runner;
    }

    /// Lists that were asked for and have not ended; an empty one ends by itself.
    [[nodiscard]] std::size_t inFlight() const { return count(false); }
    /// Of these, the ones that nobody has cancelled.
    [[nodiscard]] std::size_t wanted() const { return count(true); }

private:
    template <class Definition, class Record>
    Task<std::vector<Record>> perform(std::vector<std::shared_ptr<Call<Definition, Record>>>& calls,
        const std::function<std::vector<Record>(const std::vector<Definition>&)>& results,
        std::vector<Definition> definitions) {
        auto call = std::make_shared<Call<Definition, Record>>();
        if (definitions.empty())
            call->answer.give({});
        else if (results)
            call->answer.give(results(definitions));
        call->definitions = std::move(definitions);
        calls.push_back(call);
        if (onCall) onCall();
        return run(std::move(call), uponCancellation);
    }

    template <class Definition, class Record>
    static Task<std::vector<Record>> run(std::shared_ptr<Call<Definition, Record>> call, UponCancellation manner) {
        const TaskContext context = co_await currentContext();
        call->stopToken = context.stopToken;
        std::optional<std::stop_callback<std::function<void()>>> cancellation;
        if (manner == UponCancellation::EndsEarly)
            cancellation.emplace(context.stopToken, std::function<void()>([call] { call->answer.give({}); }));
        auto wait = call->answer.wait();
        std::vector<Record> records = co_await wait;
        call->ended = true;
        co_return records;
    }

    [[nodiscard]] std::size_t count(bool wantedOnly) const {
        const auto counts = [wantedOnly](const auto& call) {
            return !call->ended && !call->definitions.empty() && !(wantedOnly && call->isCancelled());
        };
        return static_cast<std::size_t>(
            std::ranges::count_if(siteCalls, counts) + std::ranges::count_if(serviceCalls, counts));
    }
};

} // namespace kestrin
