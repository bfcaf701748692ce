#include "monitoring/LiveCheckers.h"

#include "http/CurlTransport.h"
#include "http/SystemNameResolver.h"
#include "probing/WebsiteChecker.h"
#include "services/ProviderChecker.h"

#include <utility>

namespace kestrin {

namespace {

std::chrono::sys_seconds wallClockSeconds() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

} // namespace

struct LiveCheckers::Parts {
    explicit Parts(const Collaborators& given)
        : transport(TrustStore::systemBundles(), given.proxies),
          resolver(given.pool, std::make_shared<SystemNameResolver>(), given.clock, given.shutdown),
          client(FreshHTTPServices{given.owner, given.clock, given.pool, transport, resolver}),
          websites(client, resolver, given.clock, wallClockSeconds), services(given.clock, wallClockSeconds),
          network(liveProviderCheckDependencies(client, resolver)) {}

    CurlTransport transport;
    BackgroundResolver resolver;
    FreshHTTPClient client;
    WebsiteChecker websites;
    ProviderChecker services;
    ProviderCheckDependencies network;
};

LiveCheckers::LiveCheckers(Collaborators collaborators) : collaborators_(std::move(collaborators)) {}

LiveCheckers::~LiveCheckers() = default;

const LiveCheckers::Parts& LiveCheckers::parts() {
    const std::lock_guard guard(mutex_);
    if (!parts_) parts_ = std::make_unique<Parts>(collaborators_);
    return *parts_;
}

Task<CheckRecord> LiveCheckers::checkWebsite(SiteDefinition site, std::chrono::milliseconds timeout) {
    return parts().websites.checkWebsite(std::move(site), timeout);
}

Task<ProviderCheckRecord> LiveCheckers::checkProvider(
    ProviderDefinition service, std::chrono::milliseconds timeout) {
    const Parts& live = parts();
    return live.services.checkProvider(std::move(service), live.network, timeout);
}

Task<CustomProviderPreview> LiveCheckers::previewCustomProvider(
    std::string address, std::chrono::milliseconds timeout) {
    return kestrin::previewCustomProvider(std::move(address), parts().network, timeout);
}

std::size_t LiveCheckers::abandonedLookups() const {
    const std::lock_guard guard(mutex_);
    return parts_ ? parts_->resolver.abandonedCount() : 0;
}

bool LiveCheckers::wereUsed() const {
    const std::lock_guard guard(mutex_);
    return parts_ != nullptr;
}

} // namespace kestrin
