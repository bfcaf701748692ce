#include "fakes/ManualExecutor.h"
#include "fakes/ScriptedFeeds.h"
#include "probing/SecureHTTPError.h"
#include "probing/TransportError.h"
#include "services/CustomProviderPreview.h"
#include "services/FeedBodies.h"
#include "services/ProviderPreviewError.h"
#include "tasks/Spawn.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using namespace std::chrono_literals;
using Category = ProviderFailureCategory;

/// A way for a probe to fail, its line behind the path, and the category that it speaks for, if it speaks.
struct Trouble {
    const char* name;
    std::function<void(ScriptedFeeds&, const std::string& url)> happen;
    const char* line;
    std::optional<Category> category;
};

template <class Error> auto failing(Error error) {
    return [error](ScriptedFeeds& feeds, const std::string& url) { feeds.fail(url, error); };
}
auto answering(std::int64_t status, const std::string& body, std::optional<std::string> contentType) {
    return [=](ScriptedFeeds& feeds, const std::string& url) { feeds.answer(url, status, body, contentType); };
}

/// Documents that trouble both feed formats alike.
std::vector<Trouble> everyTrouble() {
    const std::string json = "application/json";
    return {
        {"status 199", answering(199, "{}", json), "HTTP 199", Category::unavailable},
        {"status 300", answering(300, "{}", json), "HTTP 300", Category::unavailable},
        {"media type", answering(200, "{}", "text/html"), "unsupported Content-Type", {}},
        {"no media type", answering(200, "{}", {}), "unsupported Content-Type", {}},
        {"other JSON", answering(200, "{}", json), "format not recognized", {}},
        {"no JSON", answering(200, "<html>", json), "malformed JSON", Category::malformed},
        {"wrong type", answering(200, R"({"page":1})", json), "malformed JSON", Category::malformed},
        {"unknown state",
            answering(200, R"({"page":{"status":"ODD"},"status":{"indicator":"odd","description":"Odd"}})", json),
            "unrecognized or inconsistent current state", Category::changedSchema},
        {"time-out", failing(TransportError("The request timed out.")), "The request timed out.",
            Category::unreachable},
        {"redirect refused", failing(SecureHTTPError::blockedRedirect("too many redirects")),
            "Redirect blocked: too many redirects", Category::unsafeDestination},
        {"destination refused", failing(SecureHTTPError::invalidDestination("x")),
            "Invalid or disallowed destination: x", Category::unsafeDestination},
        {"private while fetching", failing(SecureHTTPError::privateDestination("status.example.com")),
            "Private or reserved network destination blocked: status.example.com", Category::unsafeDestination},
        {"body over the limit", failing(SecureHTTPError::responseTooLarge(262'144)),
            "Response exceeded the 262144-byte safety limit", Category::malformed},
        {"not HTTP", failing(SecureHTTPError::nonHTTPResponse()), "Non-HTTP response", Category::unreachable},
        {"broken", failing(std::runtime_error("inner words")), "The request failed.", Category::unreachable},
    };
}

ProviderPreviewError refusal(const Trouble& first, const Trouble& second) {
    ManualExecutor executor;
    ScriptedFeeds feeds;
    first.happen(feeds, "https://status.example.com/api/v2/status.json");
    second.happen(feeds, "https://status.example.com/summary.json");
    const auto preview =
        spawn(executor, previewCustomProvider("https://status.example.com", feeds.dependencies(), 15s));
    executor.runUntilIdle();
    try {
        (void)preview.take();
    } catch (const ProviderPreviewError& error) {
        return error;
    }
    throw std::logic_error("a preview was given");
}

/// The smaller number is the one told; what does not speak comes last.
std::size_t rank(std::optional<Category> category) {
    constexpr std::array order = {Category::unsafeDestination, Category::changedSchema, Category::malformed,
        Category::unavailable, Category::unreachable};
    return static_cast<std::size_t>(std::ranges::find(order, category) - order.begin());
}

TEST(ARefusedPreview, tellsEveryTroubleInItsOwnWordsInTheOrderOfTheProbes) {
    for (const Trouble& trouble : everyTrouble()) {
        const ProviderPreviewError error = refusal(trouble, trouble);
        EXPECT_EQ(
            error.details, std::string("/api/v2/status.json: ") + trouble.line + "\n/summary.json: " + trouble.line)
            << trouble.name;
        EXPECT_EQ(error.category, trouble.category.value_or(Category::unsupportedFormat)) << trouble.name;
    }
}

TEST(ARefusedPreview, ofTwoTroublesIsNamedAfterTheWeightierInWhicheverOrderTheyCame) {
    for (const Trouble& one : everyTrouble()) {
        for (const Trouble& other : everyTrouble()) {
            const auto weightier = rank(one.category) < rank(other.category) ? one.category : other.category;
            EXPECT_EQ(refusal(one, other).category, weightier.value_or(Category::unsupportedFormat))
                << one.name << ", " << other.name;
        }
    }
}

TEST(ARefusedPreview, ofAPageOfAnotherPlatformIsAFormatNotSupportedYet) {
    const auto html = answering(200, "<html>", "text/html");
    const auto otherJSON = answering(200, R"({"ok":true})", "application/json");
    const Trouble one{"HTML", html, "", {}};
    const Trouble other{"JSON", otherJSON, "", {}};
    for (const ProviderPreviewError& error : {refusal(one, one), refusal(one, other), refusal(other, other)})
        EXPECT_EQ(error.category, Category::unsupportedFormat);
}

TEST(ARefusedPreview, speaksToTheUserByItsCategoryAlone) {
    const std::vector<std::pair<Category, const char*>> texts = {
        {Category::unreachable, "Couldn’t reach this status page. Check your connection or URL, then try again."},
        {Category::unsafeDestination, "This isn’t an eligible public HTTPS status page. Nothing was added."},
        {Category::unsupportedFormat,
            "This status page uses a format Kestrin doesn’t support yet. Nothing was added. If the service appears "
            "in Kestrin’s built-in list, add it from there."},
        {Category::changedSchema,
            "Kestrin recognizes this status platform, but its feed format has changed. Nothing was added."},
        {Category::unavailable, "This status feed is unavailable right now. Try again later."},
        {Category::malformed, "This status feed didn’t provide a usable current status. Nothing was added."},
    };
    for (const auto& [category, text] : texts) {
        const ProviderPreviewError error(category, "technical");
        EXPECT_EQ(error.message, text);
        EXPECT_EQ(error.details, "technical");
    }
}

} // namespace
} // namespace kestrin
