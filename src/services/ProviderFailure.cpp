#include "services/ProviderFailure.h"

#include "model/MessageError.h"
#include "probing/SecureHTTPError.h"

#include <algorithm>
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
    } catch (...) {
        // A broken resolver or transport must not end the run of all other checks.
        return {"The request failed.", ProviderFailureCategory::unreachable};
    }
}

void ProviderFailures::add(std::string line, std::optional<ProviderFailureCategory> category) {
    lines_.push_back(std::move(line));
    if (category) categories_.push_back(*category);
}

std::string ProviderFailures::joined(std::string_view separator) const {
    std::string text;
    for (const std::string& line : lines_) {
        if (!text.empty()) text += separator;
        text += line;
    }
    return text;
}

std::optional<ProviderFailureCategory> ProviderFailures::dominant(
    std::span<const ProviderFailureCategory> order) const {
    for (const ProviderFailureCategory category : order)
        if (std::ranges::find(categories_, category) != categories_.end()) return category;
    return std::nullopt;
}

} // namespace kestrin
