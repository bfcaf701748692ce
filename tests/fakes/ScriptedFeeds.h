#pragma once

#include "services/ProviderCheckDependencies.h"

#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kestrin {

/// The network of a service check from a script: hosts resolve to public addresses unless told otherwise, and each
/// URL answers in order. What happens `meanwhile` happens while the question is under way. One thread.
class ScriptedFeeds {
public:
    struct Request {
        HTTPRequest request;
        SecureRequestPolicy policy;
    };
    using Meanwhile = std::function<void()>;

    void resolve(const std::string& host, DNSResolution resolution, Meanwhile meanwhile = [] {}) {
        script_->names[host] = {std::move(resolution), nullptr, std::move(meanwhile)};
    }
    template <class Error> void failToResolve(const std::string& host, Error error) {
        script_->names[host] = {{}, std::make_exception_ptr(std::move(error)), [] {}};
    }

    void answer(const std::string& url, FreshHTTPResponse response, Meanwhile meanwhile = [] {}) {
        script_->feeds[url].push_back({std::move(response), nullptr, std::move(meanwhile)});
    }
    void answer(const std::string& url, std::int64_t status, std::string body = "{}",
        std::optional<std::string> contentType = "application/json") {
        answer(url, FreshHTTPResponse{std::move(body), status, std::move(contentType)});
    }
    template <class Error> void fail(const std::string& url, Error error, Meanwhile meanwhile = [] {}) {
        script_->feeds[url].push_back({{}, std::make_exception_ptr(std::move(error)), std::move(meanwhile)});
    }

    [[nodiscard]] ProviderCheckDependencies dependencies() const {
        return {
            .resolveHost = [script = script_](std::string host) { return resolution(script, std::move(host)); },
            .fetch =
                [script = script_](HTTPRequest request, SecureRequestPolicy policy) {
                    return response(script, std::move(request), std::move(policy));
                },
        };
    }

    /// Every host that was asked for, and every request that was made, in order.
    [[nodiscard]] const std::vector<std::string>& hosts() const { return script_->asked; }
    [[nodiscard]] const std::vector<Request>& requests() const { return script_->requests; }
    [[nodiscard]] std::vector<std::string> urls() const {
        std::vector<std::string> all;
        for (const Request& request : script_->requests)
            all.push_back(request.request.url ? request.request.url->text : "");
        return all;
    }

private:
    template <class T> struct Answer {
        T result;
        std::exception_ptr failure;
        Meanwhile meanwhile = [] {};
    };
    struct Script {
        std::map<std::string, Answer<DNSResolution>> names;
        std::map<std::string, std::deque<Answer<FreshHTTPResponse>>> feeds;
        std::vector<std::string> asked;
        std::vector<Request> requests;
    };

    static Task<DNSResolution> resolution(std::shared_ptr<Script> script, std::string host) {
        script->asked.push_back(host);
        const auto found = script->names.find(host);
        if (found == script->names.end()) co_return DNSResolution{true, {"192.88.99.1"}, std::nullopt};
        co_return play(found->second);
    }

    static Task<FreshHTTPResponse> response(
        std::shared_ptr<Script> script, HTTPRequest request, SecureRequestPolicy policy) {
        const std::string url = request.url ? request.url->text : "";
        script->requests.push_back({std::move(request), std::move(policy)});
        auto& answers = script->feeds[url];
        if (answers.empty()) throw std::logic_error("no answer is scripted for " + url);
        const Answer<FreshHTTPResponse> answer = std::move(answers.front());
        answers.pop_front();
        co_return play(answer);
    }

    template <class T> static T play(const Answer<T>& answer) {
        answer.meanwhile();
        if (answer.failure) std::rethrow_exception(answer.failure);
        return answer.result;
    }

    std::shared_ptr<Script> script_ = std::make_shared<Script>();
};

} // namespace kestrin
