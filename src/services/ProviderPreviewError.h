#pragma once

#include "model/MessageError.h"
#include "model/ProviderState.h"

#include <string>
#include <string_view>

namespace kestrin {

/// A status page that cannot be offered for adding. The message is for the user and follows from the category
/// alone.
struct ProviderPreviewError : MessageError {
    ProviderPreviewError(ProviderFailureCategory why, std::string technicalLines);

    ProviderFailureCategory category;
    std::string details; ///< technical lines, shown on request; lines are separated by a line feed
};

/// The words for a category.
[[nodiscard]] std::string_view previewErrorText(ProviderFailureCategory category);

} // namespace kestrin
