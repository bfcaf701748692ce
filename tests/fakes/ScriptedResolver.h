#pragma once

#include "http/NameResolver.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// A resolver that answers each host from a script: answers in order, the last one again and again. A host without
/// a script does not exist. Any thread.
class ScriptedResolver : public NameResolver {
public:
    using Answer = std::function<DNSResolution()>;

    void answer(const std::string& host, std::vector<std::string> addresses) {
        answer(host, [addresses = std::move(addresses)] { return DNSResolution{true, addresses, std::nullopt}; });
    }
    void fail(const std::string& host, std::optional<std::string> error) {
        answer(host, [error = std::move(error)] { return DNSResolution{false, {}, error}; });
    }
    /// Whatever the answer does (let time pass, cancel something, throw) happens during the resolution.
    void answer(const std::string& host, Answer answer) {
        const std::lock_guard guard(mutex_);
        script_[host].push_back(std::move(answer));
    }

    [[nodiscard]] DNSResolution resolve(const std::string& host) override {
        Answer answer;
        {
            const std::lock_guard guard(mutex_);
            asked_.push_back(host);
            const auto found = script_.find(host);
            if (found == script_.end()) return {false, {}, "DNS: Name or service not known"};
            answer = found->second.front();
            if (found->second.size() > 1) found->second.pop_front();
        }
        return answer();
    }

    /// Every host that was asked for, in order.
    [[nodiscard]] std::vector<std::string> asked() const {
        const std::lock_guard guard(mutex_);
        return asked_;
    }

private:
    mutable std::mutex mutex_;
    std::map<std::string, std::deque<Answer>> script_;
    std::vector<std::string> asked_;
};

} // namespace kestrin
