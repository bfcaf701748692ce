#pragma once

#include "http/ProxySettings.h"
#include "model/CheckRecord.h"
#include "model/ProviderCheckRecord.h"
#include "model/ProviderDefinition.h"
#include "model/SiteConfiguration.h"
#include "services/CustomProviderPreview.h"
#include "tasks/BlockingPool.h"
#include "tasks/Clock.h"
#include "tasks/Executor.h"
#include "tasks/Task.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>

namespace kestrin {

/// Everything that reaches the real network to look at a target: the checks of a cycle and those that the settings
/// ask for, over one transport. The transport brings libcurl and OpenSSL to life, so it is made by the first check;
/// a program that only rests in the panel need not pay for it. Any number of checks at once, any thread.
class LiveCheckers {
public:
    /// What the checks work with; references must outlive the object and the last of its tasks.
    struct Collaborators {
        Executor& owner; ///< the serial owner of the requests
        Clock& clock;
        BlockingPool& pool;       ///< for look-ups and transfers
        ProxySettings proxies;    ///< read before other threads look at the environment
        std::stop_token shutdown; ///< ends every wait for a look-up
    };

    explicit LiveCheckers(Collaborators collaborators);
    ~LiveCheckers();
    LiveCheckers(const LiveCheckers&) = delete;
    LiveCheckers& operator=(const LiveCheckers&) = delete;

    /// See `WebsiteChecker::checkWebsite`. Throws only if the transport cannot be made.
    [[nodiscard]] Task<CheckRecord> checkWebsite(SiteDefinition site, std::chrono::milliseconds timeout);
    /// See `ProviderChecker::checkProvider`. Throws only if the transport cannot be made.
    [[nodiscard]] Task<ProviderCheckRecord> checkProvider(
        ProviderDefinition service, std::chrono::milliseconds timeout);
    /// See the function of the same name, which says what the task throws.
    [[nodiscard]] Task<CustomProviderPreview> previewCustomProvider(
        std::string address, std::chrono::milliseconds timeout);

    /// Look-ups that were left behind and have not returned.
    [[nodiscard]] std::size_t abandonedLookups() const;
    /// Something was checked, so the transport exists.
    [[nodiscard]] bool wereUsed() const;

private:
    struct Parts;
    [[nodiscard]] const Parts& parts();

    const Collaborators collaborators_;
    mutable std::mutex mutex_; ///< guards the pointer; the parts themselves are for any thread
    std::unique_ptr<const Parts> parts_;
};

} // namespace kestrin
