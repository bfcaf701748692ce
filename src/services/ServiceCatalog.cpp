#include "services/ServiceCatalog.h"

#include "destinations/CustomProviderURLPolicy.h"
#include "services/ServiceTable.h"
#include "text/LocaleCase.h"
#include "text/Words.h"

#include <algorithm>

namespace kestrin {

namespace {

ServiceCatalogEntry entryOf(const CatalogServiceRow& row) {
    ServiceCatalogEntry entry;
    entry.id = row.id;
    entry.name = row.name;
    entry.category = row.category;
    for (const std::string_view alias : row.aliases)
        if (!alias.empty()) entry.searchAliases.emplace_back(alias);
    entry.statusPageURL = validatedCustomProviderURL(row.page);
    return entry;
}

std::vector<ServiceCatalogEntry> allEntries() {
    std::vector<ServiceCatalogEntry> entries;
    entries.reserve(catalogServiceTable.size());
    for (const CatalogServiceRow& row : catalogServiceTable)
        entries.push_back(entryOf(row));
    return entries;
}

std::string searchText(const ServiceCatalogEntry& entry) {
    std::string text = entry.name + ' ' + entry.category;
    for (const std::string& alias : entry.searchAliases)
        text += ' ' + alias;
    return text;
}

} // namespace

const std::vector<ServiceCatalogEntry>& serviceCatalog() {
    static const std::vector<ServiceCatalogEntry> catalog = allEntries();
    return catalog;
}

std::vector<ServiceCatalogEntry> searchServiceCatalog(
    std::string_view query, const std::optional<std::string>& localeName) {
    const std::string sought = localeLowercase(query, localeName);
    const std::vector<std::string_view> words = wordsOf(sought);
    std::vector<ServiceCatalogEntry> found;
    for (const ServiceCatalogEntry& entry : serviceCatalog()) {
        const std::string text = localeLowercase(searchText(entry), localeName);
        if (std::ranges::all_of(words, [&](std::string_view word) { return text.contains(word); }))
            found.push_back(entry);
    }
    return found;
}

} // namespace kestrin
