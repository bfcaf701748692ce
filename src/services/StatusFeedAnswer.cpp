#include "services/StatusFeedAnswer.h"

#include "services/ProviderAdapterParseError.h"
#include "services/ProviderAdapters.h"
#include "services/StatusContentType.h"
#include "tasks/CancellationError.h"

#include <utility>

namespace kestrin {

namespace {

using Kind = StatusFeedAnswer::Kind;

Kind readResponse(
    const FreshHTTPResponse& response, const ProviderAdapterIdentity& adapter, ParsedProviderStatus& status) {
    if (response.statusCode < 200 || response.statusCode > 299) return Kind::OtherStatus;
    if (!isAcceptedStatusContentType(response.contentType)) return Kind::OtherContentType;
    try {
        status = parseProviderStatus(response.data, adapter.id, adapter.version);
    } catch (const ProviderAdapterParseError& error) {
        return error.kind == ProviderAdapterParseError::Kind::malformed ? Kind::Malformed : Kind::Unrecognized;
    }
    return status.state == ProviderState::unknown ? Kind::UnknownState : Kind::KnownState;
}

} // namespace

Task<StatusFeedAnswer> askStatusFeed(ProviderCheckDependencies dependencies, HTTPRequest request,
    SecureRequestPolicy policy, ProviderAdapterIdentity adapter) {
    const TaskContext context = co_await currentContext();
    StatusFeedAnswer answer;
    bool cancelled = false;
    try {
        auto fetching = dependencies.fetch(std::move(request), std::move(policy));
        const FreshHTTPResponse response = co_await std::move(fetching);
        answer.httpStatus = response.statusCode;
        answer.kind = readResponse(response, adapter, answer.status);
    } catch (const CancellationError&) {
        cancelled = true;
    } catch (...) {
        answer.kind = Kind::Failed;
        answer.failure = currentFailure();
    }
    // A failure may be the cancellation in other words, and nobody waits for a result. What is thrown is always our
    // own: the client's error is shared with its executor, where thread checkers cannot see who frees it last.
    if (cancelled || context.isCancelled()) throw CancellationError();
    co_return answer;
}

} // namespace kestrin
