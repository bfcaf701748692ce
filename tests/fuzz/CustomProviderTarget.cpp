#include "fuzz/FuzzTarget.h"
#include "services/CustomProviderCoding.h"
#include "services/CustomProviderStoreError.h"
#include "services/CustomProviderValidation.h"
#include "json/JSONParser.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>

// The input is a "custom-providers.json". What is accepted meets every rule, judged here once more from the letters
// alone, and is written and read again without a change. Everything else is refused with one of the known
// sentences.

using namespace kestrin;

namespace {

constexpr std::array<std::string_view, 17> sentences = {
    "Kestrin could not read custom-provider settings.",
    "Kestrin refused unsupported custom-provider settings.",
    "This status-service format needs a newer Kestrin version.",
    "Kestrin refused mismatched status-service settings.",
    "Kestrin refused an oversized custom-provider definition set.",
    "Kestrin refused an unsafe custom-provider identifier.",
    "Custom-provider identifiers must be unique.",
    "This status-service adapter needs a newer Kestrin version.",
    "A custom-provider name is invalid or too long.",
    "Enter a complete public status page URL.",
    "Each additional status service must use a unique host.",
    "The public status page URL is too long.",
    "Public status page URLs must use HTTPS.",
    "Public status page URLs cannot contain embedded credentials.",
    "Public status page URLs cannot contain a query or fragment.",
    "Public status page URLs must use the standard HTTPS port.",
    "Private, local, and reserved status destinations are blocked.",
};

template <class Action> bool isAccepted(const Action& action) {
    try {
        action();
        return true;
    } catch (const CustomProviderStoreError& refusal) {
        require(std::ranges::count(sentences, refusal.message) == 1, "a refusal is one of the known sentences");
        return false;
    }
}

std::string lowercase(std::string_view text) {
    std::string lower(text);
    for (char& sign : lower)
        if (sign >= 'A' && sign <= 'Z') sign = static_cast<char>(sign - 'A' + 'a');
    return lower;
}

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char sign) { return static_cast<unsigned char>(sign) < 0x80; });
}

void judgeShape(std::string_view text) {
    const JSONValue value = parseJSON(text);
    const JSONValue::Object* file = value.asObject();
    require(file != nullptr && file->size() == 2, "a file has two keys");
    const JSONValue* providers = value.member("providers");
    require(providers != nullptr && providers->asArray() != nullptr, "services are a list");
    for (const JSONValue& each : *providers->asArray())
        require(each.asObject() != nullptr && each.asObject()->size() == 6, "a service has six keys");
}

void judgeIdentifier(std::string_view id) {
    const std::size_t number = id.find_last_not_of("0123456789") + 1;
    require(id.substr(0, number) == "provider-", "an identifier begins with its word");
    require(number < id.size() && id[number] != '0', "an identifier ends with a number");
}

void judgeName(std::string_view name) {
    require(!name.empty() && name.front() != ' ' && name.back() != ' ', "a name is trimmed");
    require(name.find("  ") == std::string_view::npos, "a name has single blanks");
    require(std::ranges::none_of(name, [](char sign) { return (sign >= 0 && sign < ' ') || sign == '\x7F'; }),
        "a name has no control characters");
    require(!isASCII(name) || name.size() <= 80, "a name has eighty characters at most");
}

/// The host of a page as its letters have it; none where white space stands around it or other letters within.
std::optional<std::string> plainHost(std::string_view page) {
    constexpr std::string_view scheme = "https://";
    if (lowercase(page.substr(0, scheme.size())) != scheme || !isASCII(page)) return std::nullopt;
    page.remove_prefix(scheme.size());
    page = page.substr(0, page.find('/'));
    if (page.starts_with('[')) return lowercase(page.substr(1, page.find(']') - 1));
    const std::size_t colon = page.find(':');
    if (colon != std::string_view::npos) {
        std::string_view port = page.substr(colon + 1);
        while (port.starts_with('0'))
            port.remove_prefix(1);
        require(port.empty() || port == "443", "a page is on the standard port");
    }
    page = page.substr(0, colon);
    while (page.starts_with('.'))
        page.remove_prefix(1);
    while (page.ends_with('.'))
        page.remove_suffix(1);
    return lowercase(page);
}

void judgePage(const CustomProviderDefinition& service) {
    const std::string& page = service.statusPageURL;
    require(page.find_first_of("?#\\") == std::string::npos, "a page is a plain address");
    require(lowercase(page).find("https://") != std::string::npos, "a page is on HTTPS");
    const auto host = plainHost(page);
    if (!host) return;
    require(page.size() <= 2'048, "a page has 2,048 bytes at most");
    require(!host->empty() && host->find('@') == std::string::npos, "a page has a host and no credentials");
    require(*host != "localhost" && !host->ends_with(".localhost") && !host->ends_with(".local"),
        "a page is on no local host");
    for (const std::string_view address : {"0.0.0.0", "10.0.0.1", "127.0.0.1", "169.254.1.1", "192.168.1.1", "::1"})
        require(*host != address, "a page is on no private address");
    require(*host != "status.openai.com" && *host != "status.claude.com", "a page is of no included service");
    require(service.adapter != "slack-status-v2" || *host == "slack-status.com", "one format has one host");
}

void judgeAdapter(const CustomProviderDefinition& service, std::int64_t schemaVersion) {
    require(service.adapterVersion == 1, "an adapter has version 1");
    const bool isStatuspage = service.adapter == "statuspage-v2";
    require(isStatuspage || schemaVersion == 2, "the first version knows Statuspage alone");
    require(isStatuspage || service.adapter == "betterstack-index" || service.adapter == "instatus-summary" ||
                service.adapter == "slack-status-v2",
        "there are four adapters");
}

void judge(const CustomProviderConfiguration& configuration) {
    require(configuration.schemaVersion == 1 || configuration.schemaVersion == 2, "there are two versions");
    require(configuration.providers.size() <= 100, "there are a hundred services at most");
    std::set<std::string> ids;
    std::set<std::string> hosts;
    for (const CustomProviderDefinition& service : configuration.providers) {
        judgeIdentifier(service.id);
        judgeAdapter(service, configuration.schemaVersion);
        judgeName(service.name);
        judgePage(service);
        require(ids.insert(service.id).second, "identifiers differ");
        const auto host = plainHost(service.statusPageURL);
        require(!host || hosts.insert(*host).second, "hosts differ");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text = inputText(bytes, size);
    CustomProviderConfiguration read;
    if (!isAccepted([&] { read = decodeCustomProviders(text); })) return 0;
    judgeShape(text);
    const std::string written = writePretty(encodeCustomProviders(read));
    require(written.ends_with("}\n"), "a file ends with its line feed");
    require(decodeCustomProviders(written) == read, "what is written is read again");

    if (!isAccepted([&] { validateCustomProviders(read); })) return 0;
    judge(read);
    CustomProviderConfiguration lowest = read;
    lowest.schemaVersion = customProviderSchemaVersion(read.providers);
    require(lowest.schemaVersion <= read.schemaVersion, "the lowest version is the lowest");
    require(isAccepted([&] { validateCustomProviders(lowest); }), "what is read may be saved");
    require(
        isAccepted([&] { CustomProviderValidation().validate(read.providers); }), "a list is judged like its file");
    return 0;
}
