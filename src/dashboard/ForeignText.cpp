#include "dashboard/ForeignText.h"

#include "text/Shortening.h"

namespace kestrin {

std::string shownName(std::string_view name) {
    return shortenedForDisplay(name, 400);
}

std::string shownURL(std::string_view url) {
    return shortenedForDisplay(url, 2'000);
}

std::string shownError(std::string_view error) {
    return shortenedForDisplay(error, 400);
}

std::string shownSummary(std::string_view summary) {
    return shortenedForDisplay(summary, 2'000);
}

std::string shownTimestamp(std::string_view timestamp) {
    return shortenedForDisplay(timestamp, 40);
}

std::string shownAddress(std::string_view address) {
    return shortenedForDisplay(address, 60);
}

std::string shownMessage(std::string_view message) {
    return shortenedForDisplay(message, 2'000);
}

} // namespace kestrin
