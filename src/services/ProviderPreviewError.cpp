#include "services/ProviderPreviewError.h"

#include <utility>

namespace kestrin {

std::string_view previewErrorText(ProviderFailureCategory category) {
    switch (category) {
    case ProviderFailureCategory::unreachable:
        return "Couldn’t reach this status page. Check your connection or URL, then try again.";
    case ProviderFailureCategory::unsafeDestination:
        return "This isn’t an eligible public HTTPS status page. Nothing was added.";
    case ProviderFailureCategory::unsupportedFormat:
        return "This status page uses a format Kestrin doesn’t support yet. Nothing was added. If the service "
               "appears in Kestrin’s built-in list, add it from there.";
    case ProviderFailureCategory::changedSchema:
        return "Kestrin recognizes this status platform, but its feed format has changed. Nothing was added.";
    case ProviderFailureCategory::unavailable:
        return "This status feed is unavailable right now. Try again later.";
    case ProviderFailureCategory::malformed:
        return "This status feed didn’t provide a usable current status. Nothing was added.";
    }
    std::unreachable();
}

ProviderPreviewError::ProviderPreviewError(ProviderFailureCategory why, std::string technicalLines)
    : MessageError(std::string(previewErrorText(why))), category(why), details(std::move(technicalLines)) {}

} // namespace kestrin
