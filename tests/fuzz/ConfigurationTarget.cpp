#include "destinations/URLSplitter.h"
#include "fuzz/FuzzTarget.h"
#include "services/ConfigurationValidation.h"
#include "state/SafeIdentifier.h"
#include "state/SiteConfigurationCoding.h"
#include "state/SiteValidation.h"
#include "state/StateErrors.h"
#include "text/Trimming.h"
#include "json/JSONError.h"
#include "json/JSONParser.h"
#include "json/JSONWriter.h"

#include <optional>

// The input is a "sites.json". What decodes is written and read again without a change, what does not is refused
// with a sentence, and what passes the validation is what the validation promises.

using namespace kestrin;

namespace {

struct NoCustomProviders : CustomProviderValidating {
    void validate(const std::vector<CustomProviderDefinition>&) const override {}
};

std::optional<SiteConfiguration> decoded(std::string_view text) {
    try {
        return decodeSiteConfiguration(parseJSON(text));
    } catch (const JSONError& refusal) {
        require(!refusal.message.empty() && refusal.message.size() < 1000, "a refusal is a sentence");
        return std::nullopt;
    }
}

bool passes(const auto& validation) {
    try {
        validation();
        return true;
    } catch (const StateValidationError& refusal) {
        require(!refusal.message.empty(), "a refusal says why");
        return false;
    }
}

void judgeSite(const SiteDefinition& site) {
    const bool newID = passes([&] { validateNewSiteID(site.id); });
    require(!newID || isSafeIdentifier(site.id), "a new identifier is a safe one");
    if (!passes([&] { validateSiteDefinition(site); })) return;
    require(isSafeIdentifier(site.id), "a valid website has a safe identifier");
    const auto url = splitURL(trimmed(site.url));
    require(url && !url->host.empty() && !url->user && !url->password, "a valid website has a complete URL");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto configuration = decoded(inputText(bytes, size));
    if (!configuration) return 0;
    const std::string written = writePretty(encodeSiteConfiguration(*configuration));
    require(written.ends_with("}\n"), "a file ends with its line feed");
    require(decodeSiteConfiguration(parseJSON(written)) == *configuration, "what is written is read again");
    require(writePretty(encodeSiteConfiguration(decodeSiteConfiguration(parseJSON(written)))) == written,
        "writing again changes nothing");

    for (const SiteDefinition& site : configuration->sites)
        judgeSite(site);
    const NoCustomProviders none;
    const bool strict = passes([&] { validateConfiguration(*configuration, std::nullopt, false, true, none); });
    const bool lenient = passes([&] { validateConfiguration(*configuration, std::nullopt, true, false, none); });
    require(lenient || !strict, "what passes the strict gate passes the lenient one");
    require(!lenient || !configuration->sites.empty(), "a valid configuration has a website");
    return 0;
}
