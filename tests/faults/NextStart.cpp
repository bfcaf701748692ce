#include "faults/Content.h"
#include "faults/Judgement.h"
#include "model/MessageError.h"
#include "services/CustomProviderStore.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"

#include <algorithm>

namespace kestrin {

namespace fs = std::filesystem;

namespace {

std::string contentOf(const fs::path& file) {
    const Tree directory = fs::exists(file.parent_path()) ? treeOf(file.parent_path()) : Tree();
    const auto found = directory.find(file.filename().string());
    return found == directory.end() ? "" : found->second.value_or("");
}

std::int64_t recordsOfSite(const StateReader& reader) {
    return reader.loadSiteSnapshots(formerConfiguration().sites).at(0).history.totalCheckCount;
}

std::size_t recordsOfService(const StateReader& reader) {
    ProviderDefinition service;
    service.id = "claude";
    return reader.loadProviderSnapshots({service}).at(0).history.recentChecks.size();
}

/// The line must become readable, whatever stands before it, and what stands before it must stay.
template <class Append, class Count>
std::string faultOfAppend(const fs::path& file, const Append& append, const Count& count) {
    const std::string former = contentOf(file);
    const auto records = count();
    append();
    if (!contentOf(file).starts_with(former)) return file.string() + " lost former bytes to an append";
    if (count() != records + 1) return file.string() + " does not show the check that was appended";
    return {};
}

/// Added services are there as they were or as they were to be; others can be added and saved.
std::string faultOfAddedServices(const fs::path& root) {
    const CustomProviderStore store(root);
    const auto former = store.load();
    if (former && former != formerAddedServices() && former != newAddedServices())
        return "other added services were read";
    const std::string id = store.nextIdentifier({});
    const auto isTaken = [&](const CustomProviderDefinition& service) { return service.id == id; };
    if (former && std::ranges::any_of(former->providers, isTaken)) return "an identifier was given out again";

    const auto backup = store.save(2, newAddedServices().providers, Backup::Make);
    if (backup.has_value() != former.has_value() || (backup && contentOf(*backup) != fileOf(*former)))
        return "the next save of added services made no whole backup";
    return store.load() == newAddedServices() ? "" : "the next save of added services is not read back";
}

std::string faultWhenUsed(const fs::path& root) {
    const StateReader reader(root);
    StateWriter writer(root);
    if (!reader.loadConfiguration().isConfigured()) writer.saveConfiguration(formerConfiguration(), Backup::Make);
    const SiteConfiguration former = reader.loadConfiguration().configuration();
    if (former != formerConfiguration() && former != newConfiguration()) return "another configuration was read";
    if (reader.nextAvailableSiteID({}).empty()) return "no identifier was found";

    std::string wrong = faultOfAppend(
        root / "data/site-1.jsonl", [&] { writer.appendCheck(siteCheck("2026-01-31T10:00:00Z")); },
        [&] { return recordsOfSite(reader); });
    if (wrong.empty())
        wrong = faultOfAppend(
            root / "data/providers/claude.jsonl",
            [&] { writer.appendProviderCheck(serviceCheck("2026-01-31T10:00:00Z")); },
            [&] { return recordsOfService(reader); });
    if (!wrong.empty()) return wrong;

    const auto backup = writer.saveConfiguration(newConfiguration(), Backup::Make);
    if (!backup || contentOf(*backup) != fileOf(former)) return "the next save made no whole backup";
    if (reader.loadConfiguration() != ConfigurationLoadResult::configured(newConfiguration()))
        return "the next save is not read back";
    return faultOfAddedServices(root);
}

} // namespace

std::string nextStartFault(const fs::path& root) {
    try {
        return faultWhenUsed(root);
    } catch (const MessageError& error) {
        return "the next start fails: " + error.message;
    }
}

} // namespace kestrin
