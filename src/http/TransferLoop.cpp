#include "http/TransferLoop.h"

#include <algorithm>
#include <memory>

namespace kestrin {

using namespace std::chrono_literals;

namespace {

/// libcurl 7.88 sleeps on after a refused connect although another address is left; until there is a connection it
/// is asked often.
constexpr auto connectingPatience = 50ms;
constexpr auto connectedPatience = 1000ms;
/// Keeps sums with the clock far from its end.
constexpr auto longestLimit = std::chrono::milliseconds(24h);

struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

/// An easy handle must leave its multi handle before either goes.
class Membership {
public:
    Membership(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy), code_(curl_multi_add_handle(multi, easy)) {}
    ~Membership() { curl_multi_remove_handle(multi_, easy_); }
    Membership(const Membership&) = delete;
    Membership& operator=(const Membership&) = delete;

    [[nodiscard]] bool ok() const { return code_ == CURLM_OK; }

private:
    CURLM* multi_;
    CURL* easy_;
    CURLMcode code_;
};

} // namespace

TransferLoop::TransferLoop(TransferLimits limits)
    : limits_{std::min(limits.inactivity, longestLimit), std::min(limits.total, longestLimit)},
      end_(Clock::now() + limits_.total), lastActivity_(Clock::now()) {}

TransferLoop::Clock::time_point TransferLoop::deadline() const {
    return std::min(end_, lastActivity_ + limits_.inactivity);
}

int TransferLoop::patience(CURL* handle) const {
    curl_off_t secured = 0;
    curl_easy_getinfo(handle, CURLINFO_APPCONNECT_TIME_T, &secured);
    const auto most = secured > 0 ? connectedPatience : connectingPatience;
    // Rounded up, or the last millisecond would be spent spinning.
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline() - Clock::now());
    return static_cast<int>(std::clamp(left, 0ms, std::chrono::milliseconds(most)).count());
}

TransferLoop::Result TransferLoop::run(CURL* handle, const std::stop_token& stop) {
    if (stop.stop_requested()) return {End::Cancelled, CURLE_OK};
    if (Clock::now() >= deadline()) return {End::TimedOut, CURLE_OK};

    const std::unique_ptr<CURLM, MultiDeleter> multi(curl_multi_init());
    if (!multi) return {End::Finished, CURLE_FAILED_INIT};
    const Membership membership(multi.get(), handle);
    if (!membership.ok()) return {End::Finished, CURLE_FAILED_INIT};
    const std::stop_callback wakeUp(stop, [&multi] { curl_multi_wakeup(multi.get()); });

    for (;;) {
        int running = 0;
        if (curl_multi_perform(multi.get(), &running) != CURLM_OK) return {End::Finished, CURLE_FAILED_INIT};
        int queued = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi.get(), &queued)) {
            if (message->msg == CURLMSG_DONE) return {End::Finished, message->data.result};
        }
        if (stop.stop_requested()) return {End::Cancelled, CURLE_OK};
        if (Clock::now() >= deadline()) return {End::TimedOut, CURLE_OK};
        if (curl_multi_poll(multi.get(), nullptr, 0, patience(handle), nullptr) != CURLM_OK) {
            return {End::Finished, CURLE_FAILED_INIT};
        }
    }
}

} // namespace kestrin
