#include "services/ProviderCheckDependencies.h"

#include <utility>

namespace kestrin {

ProviderCheckDependencies liveProviderCheckDependencies(FreshHTTPClient client, BackgroundResolver resolver) {
    return {
        .resolveHost = [resolver = std::move(resolver)](
                           std::string host) { return resolver.resolveHostInBackground(std::move(host)); },
        .fetch = [client = std::move(client)](HTTPRequest request,
                     SecureRequestPolicy policy) { return client.fetch(std::move(request), std::move(policy)); },
    };
}

} // namespace kestrin
