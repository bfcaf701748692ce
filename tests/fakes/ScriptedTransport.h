#pragma once

#include "fakes/VirtualClock.h"
#include "http/HTTPTransport.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// A small internet: each host answers from a script, in order. It keeps the contract of a transport: time-outs by
/// the virtual clock, body limits, headers only, cancellation. A request beyond the script throws. Any thread.
class ScriptedTransport : public HTTPTransport {
public:
    struct Answer {
        HTTPHopResponse response;
        std::vector<std::chrono::milliseconds> waits = {}; ///< silences of the server before the response is there
        std::optional<HTTPHopError> failure = {};
        std::function<void()> meanwhile = [] {}; ///< what happens elsewhere while the request is under way
    };

    explicit ScriptedTransport(VirtualClock& clock) : clock_(clock) {}

    void answer(const std::string& host, Answer answer) {
        const std::lock_guard guard(mutex_);
        script_[host].push_back(std::move(answer));
    }
    void answer(const std::string& host, std::int64_t status, std::string body = {}) {
        Answer given;
        given.response.status = status;
        given.response.body = std::move(body);
        answer(host, std::move(given));
    }
    void redirect(const std::string& host, std::vector<std::string> locations, std::int64_t status = 302) {
        Answer given;
        given.response.status = status;
        given.response.locations = std::move(locations);
        answer(host, std::move(given));
    }

    std::optional<std::string> proxyHost; ///< set before the first request

    [[nodiscard]] std::optional<std::string> proxyHostFor(const std::string&) const override { return proxyHost; }
    [[nodiscard]] std::expected<HTTPHopResponse, HTTPHopError> perform(
        const HTTPHopRequest& request, std::stop_token stop) override {
        Answer answer = take(request);
        if (stop.stop_requested()) return failed(HTTPHopError::Kind::Cancelled, "");
        answer.meanwhile();
        if (stop.stop_requested()) return failed(HTTPHopError::Kind::Cancelled, "");
        auto left = request.totalTimeout;
        for (const auto wait : answer.waits) {
            const auto patience = std::min(request.inactivityTimeout, left);
            clock_.advance(std::min(wait, patience));
            if (wait >= patience) return failed(HTTPHopError::Kind::Transport, "The request timed out.");
            left -= wait;
        }
        if (answer.failure) return std::unexpected(*answer.failure);
        if (request.headersOnly || answer.response.isRedirect()) {
            answer.response.body.clear();
        } else if (std::cmp_greater(answer.response.body.size(), request.maximumBodyBytes)) {
            return failed(HTTPHopError::Kind::ResponseTooLarge, "");
        }
        return answer.response;
    }

    /// Every request that was sent, in order.
    [[nodiscard]] std::vector<HTTPHopRequest> sent() const {
        const std::lock_guard guard(mutex_);
        return sent_;
    }
    [[nodiscard]] static std::expected<HTTPHopResponse, HTTPHopError> failed(
        HTTPHopError::Kind kind, std::string message) {
        return std::unexpected(HTTPHopError{kind, std::move(message)});
    }

private:
    Answer take(const HTTPHopRequest& request) {
        const std::lock_guard guard(mutex_);
        sent_.push_back(request);
        auto& answers = script_[request.host];
        if (answers.empty()) throw std::logic_error("no answer is scripted for " + request.host);
        Answer answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }

    VirtualClock& clock_;
    mutable std::mutex mutex_;
    std::map<std::string, std::deque<Answer>> script_;
    std::vector<HTTPHopRequest> sent_;
};

} // namespace kestrin
