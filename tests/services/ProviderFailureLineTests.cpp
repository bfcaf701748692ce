#include "probing/SecureHTTPError.h"
#include "probing/TransportError.h"
#include "services/ProviderCheckLab.h"

#include <gmock/gmock.h>

namespace kestrin {
namespace {

using Category = ProviderFailureCategory;
using Lab = ProviderCheckLab;

/// A way for an endpoint to give no state, the line that says so behind the path, and its category.
struct Trouble {
    const char* name;
    std::function<void(ScriptedFeeds&, const std::string& url)> happen;
    const char* line;
    Category category;
};

template <class Error> auto failing(Error error) {
    return [error](ScriptedFeeds& feeds, const std::string& url) { feeds.fail(url, error); };
}
auto answering(std::int64_t status, const std::string& body, std::optional<std::string> contentType) {
    return [=](ScriptedFeeds& feeds, const std::string& url) { feeds.answer(url, status, body, contentType); };
}

/// Every row of what can happen at an endpoint.
std::vector<Trouble> everyTrouble() {
    const std::string json = "application/json";
    return {
        {"status 199", answering(199, "{}", json), "HTTP 199", Category::unavailable},
        {"status 300", answering(300, "{}", json), "HTTP 300", Category::unavailable},
        {"status 404", answering(404, "{}", json), "HTTP 404", Category::unavailable},
        {"status before media type", answering(503, "", "text/html"), "HTTP 503", Category::unavailable},
        {"media type", answering(200, "{}", "text/json"), "unsupported Content-Type", Category::unsupportedFormat},
        {"no media type", answering(200, "{}", {}), "unsupported Content-Type", Category::unsupportedFormat},
        {"unrecognised feed", answering(299, "{}", json), "status format not recognized", Category::changedSchema},
        {"undecodable feed", answering(200, "<html>", json), "malformed current status data", Category::malformed},
        {"wrong type", answering(200, R"({"page":1})", json), "malformed current status data", Category::malformed},
        {"unknown state", answering(200, R"({"page":{},"status":{}})", json), "unrecognized status",
            Category::changedSchema},
        {"time-out", failing(TransportError("The request timed out.")), "The request timed out.",
            Category::unreachable},
        {"redirect refused", failing(SecureHTTPError::blockedRedirect("unapproved provider endpoint")),
            "Redirect blocked: unapproved provider endpoint", Category::unsafeDestination},
        {"destination refused", failing(SecureHTTPError::invalidDestination("https://a@b/")),
            "Invalid or disallowed destination: https://a@b/", Category::unsafeDestination},
        {"private while fetching", failing(SecureHTTPError::privateDestination("status.example.com")),
            "Private or reserved network destination blocked: status.example.com", Category::unsafeDestination},
        {"body over the limit", failing(SecureHTTPError::responseTooLarge(262'144)),
            "Response exceeded the 262144-byte safety limit", Category::malformed},
        {"not HTTP", failing(SecureHTTPError::nonHTTPResponse()), "Non-HTTP response", Category::unreachable},
    };
}

TEST(FailureLines, tellEveryTroubleAtAnEndpointWithItsPathAndItsCategory) {
    for (const Trouble& trouble : everyTrouble()) {
        Lab lab;
        trouble.happen(lab.feeds, Lab::first);
        trouble.happen(lab.feeds, Lab::second);
        const ProviderCheckRecord record = lab.recordOf();
        EXPECT_EQ(record.error,
            std::string("/api/v2/status.json: ") + trouble.line + "; /api/v2/summary.json: " + trouble.line)
            << trouble.name;
        EXPECT_EQ(record.failureCategory, trouble.category) << trouble.name;
        EXPECT_EQ(record.endpoint, Lab::second) << trouble.name;
        EXPECT_EQ(record.state, ProviderState::unknown) << trouble.name;
        EXPECT_EQ(lab.feeds.requests().size(), 2U) << trouble.name;
    }
}

/// How much a category weighs: the smaller number is the one recorded.
int rank(Category category) {
    constexpr std::array order = {Category::unsafeDestination, Category::changedSchema, Category::unsupportedFormat,
        Category::malformed, Category::unavailable, Category::unreachable};
    return static_cast<int>(std::ranges::find(order, category) - order.begin());
}

TEST(FailureLines, ofTwoTroublesTheWeightierCategoryIsRecordedInWhicheverOrderTheyCame) {
    for (const Trouble& one : everyTrouble()) {
        for (const Trouble& other : everyTrouble()) {
            Lab lab;
            one.happen(lab.feeds, Lab::first);
            other.happen(lab.feeds, Lab::second);
            const Category weightier = rank(one.category) < rank(other.category) ? one.category : other.category;
            EXPECT_EQ(lab.recordOf().failureCategory, weightier) << one.name << ", " << other.name;
        }
    }
}

struct EarlyTrouble {
    const char* name;
    std::function<void(ProviderDefinition&, ScriptedFeeds&)> happen;
    const char* error;
};

void breakFirstURL(ProviderDefinition& service, const std::function<void(WebURL&)>& change) {
    change(service.statusURLs.front());
}

TEST(FailureLines, beforeAnyRequestAreTheDescriptionAlone) {
    const char* unsupported = "Invalid or disallowed destination: Unsupported status adapter";
    const char* notAllowed = "Invalid or disallowed destination: Provider endpoint allowlist";
    const char* privateTwice = "Private or reserved network destination blocked: status.example.com: "
                               "Private or reserved network destination blocked";
    const std::string host = "status.example.com";
    const std::vector<EarlyTrouble> troubles = {
        {"no endpoints", [](auto& service, auto&) { service.statusURLs.clear(); }, unsupported},
        {"unknown adapter", [](auto& service, auto&) { service.adapter.id = "other"; }, unsupported},
        {"version 2", [](auto& service, auto&) { service.adapter.version = 2; }, unsupported},
        {"not https",
            [](auto& service, auto&) { breakFirstURL(service, [](WebURL& url) { url.scheme = "http"; }); },
            notAllowed},
        {"the second not https", [](auto& service, auto&) { service.statusURLs.back().scheme = "http"; },
            notAllowed},
        {"no host", [](auto& service, auto&) { breakFirstURL(service, [](WebURL& url) { url.host.clear(); }); },
            notAllowed},
        {"private", [&](auto&, auto& feeds) { feeds.resolve(host, {true, {"192.168.0.1"}, {}}); }, privateTwice},
        {"no address", [&](auto&, auto& feeds) { feeds.resolve(host, {true, {}, {}}); }, privateTwice},
        {"failed without words", [&](auto&, auto& feeds) { feeds.resolve(host, {false, {}, {}}); }, privateTwice},
        {"resolver failed",
            [&](auto&, auto& feeds) { feeds.resolve(host, {false, {}, "DNS: Name or service not known"}); },
            "Private or reserved network destination blocked: status.example.com: DNS: Name or service not known"},
    };
    for (const EarlyTrouble& trouble : troubles) {
        Lab lab;
        ProviderDefinition service = Lab::service();
        trouble.happen(service, lab.feeds);
        const ProviderCheckRecord record = lab.recordOf(service);
        EXPECT_EQ(record.error, trouble.error) << trouble.name;
        EXPECT_EQ(record.failureCategory, Category::unsafeDestination) << trouble.name;
        EXPECT_EQ(record.httpStatus, std::nullopt) << trouble.name;
        EXPECT_EQ(record.elapsedMS, 0) << trouble.name;
        EXPECT_EQ(record.endpoint, service.statusURLs.empty() ? Lab::page : Lab::first) << trouble.name;
        EXPECT_TRUE(lab.feeds.requests().empty()) << trouble.name;
    }
}

} // namespace
} // namespace kestrin
