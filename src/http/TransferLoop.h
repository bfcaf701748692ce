#pragma once

#include <curl/curl.h>

#include <chrono>
#include <stop_token>

namespace kestrin {

/// When a transfer has taken too long.
struct TransferLimits {
    std::chrono::milliseconds inactivity{0};
    std::chrono::milliseconds total{0};
};

/// Runs one easy handle to its end on a multi handle of its own, with time-outs that hold whatever libcurl waits
/// for, and an ear for the stop token. One thread.
class TransferLoop {
public:
    using Clock = std::chrono::steady_clock;
    enum class End { Finished, TimedOut, Cancelled };
    struct Result {
        End end = End::Finished;
        CURLcode code = CURLE_OK; ///< with `Finished`
    };

    explicit TransferLoop(TransferLimits limits);

    /// The server gave a sign; called from the handle's callbacks.
    void noteActivity() { lastActivity_ = Clock::now(); }

    /// Once. The handle belongs to the caller and is free again afterwards.
    [[nodiscard]] Result run(CURL* handle, const std::stop_token& stop);

private:
    [[nodiscard]] Clock::time_point deadline() const;
    [[nodiscard]] int patience(CURL* handle) const;

    TransferLimits limits_;
    Clock::time_point end_;
    Clock::time_point lastActivity_;
};

} // namespace kestrin
