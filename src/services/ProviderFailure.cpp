#include "services/ProviderFailure.h"

#include "model/MessageError.h"
#include "probing/SecureHTTPError.h"
#include "tasks/CancellationError.h"

#include <utility>

namespace kestrin {

namespace {

ProviderFailureCategory categoryOf(SecureHTTPError::Case failure) {
    switch (failure) {
    case SecureHTTPError::Case::invalidDestination:
    case SecureHTTPError::Case::blockedRedirect:
    case SecureHTTPError::Case::privateDestination:
        return ProviderFailureCategory::unsafeDestination;
    case SecureHTTPError::Case::responseTooLarge:
        return ProviderFailureCategory::malformed;
    case SecureHTTPError::Case::nonHTTPResponse:
        return ProviderFailureCategory::unreachable;
    }
    std::unreachable();
}

} // namespace

ProviderFailure currentFailure() {
    try {
        throw;
    } catch (const SecureHTTPError& refusal) {
        return {refusal.message, categoryOf(refusal.kind)};
    } catch (const MessageError& failure) {
        return {failure.message, ProviderFailureCategory::unreachable};
    } catch (const CancellationError& cancellation) {
        return {cancellation.what(), ProviderFailureCategory::unreachable};
    } catch (...) {
        // A broken resolver or transport must not end the run of all other checks.
        return {"The request failed.", ProviderFailureCategory::unreachable};
    }
}

} // namespace kestrin
