#pragma once

#include "destinations/URLSplitter.h"
#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "fakes/ScriptedResolver.h"
#include "fakes/ScriptedTransport.h"
#include "fakes/VirtualClock.h"
#include "probing/FreshHTTPClient.h"
#include "probing/SecureHTTPError.h"
#include "tasks/Spawn.h"

#include <stdexcept>

namespace kestrin {

inline WebURL urlOf(const std::string& text) {
    auto url = splitURL(text);
    if (!url) throw std::invalid_argument("no URL: " + text);
    return *url;
}

/// A client in an internet of scripts, in which nothing moves unless the test says so.
struct ProbingLab {
    VirtualClock clock;
    ManualExecutor caller;
    ManualExecutor owner;
    ManualPool transfers;
    ManualPool lookups;
    ScriptedTransport internet{clock};
    std::shared_ptr<ScriptedResolver> names = std::make_shared<ScriptedResolver>();
    std::stop_source shutdown;
    BackgroundResolver resolver{lookups, names, clock, shutdown.get_token(), 2};
    FreshHTTPClient client{FreshHTTPServices{owner, clock, transfers, internet, resolver}};

    void runExecutors() {
        while (caller.runUntilIdle() + owner.runUntilIdle() > 0) {
        }
    }
    void finishLookup(std::size_t index = 0) {
        lookups.finish(index);
        runExecutors();
    }
    void finishTransfer(std::size_t index = 0) {
        transfers.finish(index);
        runExecutors();
    }
    /// Runs everything to its end.
    void settle() {
        for (runExecutors(); lookups.waiting() + transfers.waiting() > 0;) {
            if (lookups.waiting() > 0)
                finishLookup();
            else
                finishTransfer();
        }
    }

    template <class T> TaskHandle<T> start(Task<T> task) {
        TaskHandle<T> handle = spawn(caller, std::move(task));
        runExecutors();
        return handle;
    }
    TaskHandle<FreshHTTPResponse> startFetch(const std::string& text, SecureRequestPolicy policy) {
        return start(client.fetch(request(text), std::move(policy)));
    }
    /// A website's request under the website's policy.
    TaskHandle<FreshHTTPResponse> startWebsite(const std::string& text) {
        return startFetch(text, websitePolicy(urlOf(text)));
    }

    static HTTPRequest request(const std::string& text) {
        HTTPRequest request;
        request.url = urlOf(text);
        request.headers = {{"User-Agent", "test/1"}};
        request.timeout = std::chrono::seconds(15);
        return request;
    }

    /// The message of what the ended task threw; of a result, its status.
    static std::string outcome(const TaskHandle<FreshHTTPResponse>& handle) {
        if (!handle.done()) return "not done";
        try {
            return "status " + std::to_string(handle.take().statusCode);
        } catch (const std::exception& failure) {
            return failure.what();
        }
    }
    std::string outcomeOfFetch(const std::string& text, SecureRequestPolicy policy) {
        const auto handle = startFetch(text, std::move(policy));
        settle();
        return outcome(handle);
    }
    std::string outcomeOfWebsite(const std::string& text) {
        return outcomeOfFetch(text, websitePolicy(urlOf(text)));
    }

    /// Hosts and targets that were contacted.
    [[nodiscard]] std::vector<std::string> contacted() const {
        std::vector<std::string> all;
        for (const HTTPHopRequest& hop : internet.sent())
            all.push_back(hop.host + ":" + std::to_string(hop.port) + hop.target);
        return all;
    }
};

} // namespace kestrin
