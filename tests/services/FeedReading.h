#pragma once

#include "services/ProviderAdapterParseError.h"
#include "services/ProviderAdapters.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace kestrin {

/// How a failing test shows a status.
inline void PrintTo(const ParsedProviderStatus& status, std::ostream* out) {
    *out << title(status.state) << " \"" << status.summary << "\", at "
         << status.officialUpdatedAt.value_or("no time") << ", of " << status.pageName.value_or("no page");
}

inline ParsedProviderStatus readFeed(const std::string& adapterID, std::string_view response) {
    return parseProviderStatus(response, adapterID, 1);
}

/// Why the response is refused; nothing if it is not. Whatever else is thrown ends the test.
inline std::optional<ProviderAdapterParseError::Kind> refusalOf(
    const std::string& adapterID, std::string_view response) {
    try {
        static_cast<void>(readFeed(adapterID, response));
        return std::nullopt;
    } catch (const ProviderAdapterParseError& refusal) {
        return refusal.kind;
    }
}

} // namespace kestrin
