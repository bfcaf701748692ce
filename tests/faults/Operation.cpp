#include "faults/Operation.h"

#include "faults/Content.h"
#include "services/CustomProviderStore.h"
#include "state/AtomicStateFile.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace kestrin {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr const char* fileOfBefore = "share/Kestrin/sites.json";
constexpr const char* historyFile = "share/Kestrin/data/site-1.jsonl";
constexpr const char* serviceFile = "share/Kestrin/data/providers/claude.jsonl";
constexpr const char* backupFile = "share/Kestrin/backups/sites-2026-01-31T09-05-00Z.json";

JSONValue value() {
    return JSONValue::object({{"schema_version", 1}, {"text", "new"}});
}

/// A clock that stands still, so that every run makes the same calls.
std::chrono::sys_seconds moment() {
    return std::chrono::sys_days(std::chrono::January / 31 / 2026) + 9h + 5min;
}

StateWriter writerAt(const fs::path& root) {
    return StateWriter(root, moment);
}

void save(const fs::path& root) {
    writerAt(root).saveConfiguration(newConfiguration(), Backup::None);
}

void saveWithBackup(const fs::path& root) {
    writerAt(root).saveConfiguration(newConfiguration(), Backup::Make);
}

void append(const fs::path& root) {
    writerAt(root).appendCheck(siteCheck("2026-01-31T09:05:00Z"));
}

void appendForService(const fs::path& root) {
    writerAt(root).appendProviderCheck(serviceCheck("2026-01-31T09:05:00Z"));
}

void saveAddedServices(const fs::path& root) {
    CustomProviderStore(root, moment).save(2, newAddedServices().providers, Backup::None);
}

void saveAddedServicesWithBackup(const fs::path& root) {
    CustomProviderStore(root, moment).save(2, newAddedServices().providers, Backup::Make);
}

void replaceNotificationSettings(const fs::path& root) {
    AtomicStateFile::replaceFile(value(), root / "notification-settings.json", root, notificationSettingsFileRules);
}

void replaceNotificationLedger(const fs::path& root) {
    AtomicStateFile::replaceFile(value(), root / "notification-ledger.json", root, notificationLedgerFileRules);
}

void createNewFile(const fs::path& root) {
    AtomicStateFile::writeNewFile(
        writePretty(value()), root / "backups/custom-providers-2026.json", "The disk took no data.");
}

void readEverything(const fs::path& root) {
    const StateReader reader(root);
    if (!reader.configurationRevision()) throw std::logic_error("the revision was not found");
    const SiteConfiguration configuration = reader.loadConfiguration().configuration();
    if (reader.nextAvailableSiteID({}).empty()) throw std::logic_error("no identifier was found");
    const auto sites = reader.loadSiteSnapshots(configuration.sites);
    const auto services = reader.loadProviderSnapshots({{.id = "claude",
        .name = "Claude",
        .adapter = {},
        .statusURLs = {},
        .publicStatusURL = {},
        .source = ProviderSource::bundledOfficial}});
    if (sites.at(0).history.totalCheckCount != 1 || services.at(0).history.recentChecks.size() != 1)
        throw std::logic_error("records were not found");
    if (AtomicStateFile::readBounded(root / "notification-settings.json", 65'536, "Too large.") != "{}\n")
        throw std::logic_error("other bytes were read");
    if (AtomicStateFile::directoryIdentity(root).inode == 0) throw std::logic_error("no inode was found");
}

Tree with(Tree tree, const Tree& more) {
    tree.insert(more.begin(), more.end());
    return tree;
}

std::vector<Operation> makeOperations() {
    const std::string oldFile = fileOf(formerConfiguration());
    const std::string newFile = fileOf(newConfiguration());
    const std::string oldLine = lineOf(siteCheck("2026-01-31T09:00:00Z"));
    const std::string newLine = lineOf(siteCheck("2026-01-31T09:05:00Z"));
    const std::string oldServiceLine = lineOf(serviceCheck("2026-01-31T09:00:00Z"));
    const std::string newServiceLine = lineOf(serviceCheck("2026-01-31T09:05:00Z"));
    const std::string torn = oldLine + oldLine.substr(0, 30);
    const std::string replaced = writePretty(value());

    const Tree place = {{"share", std::nullopt}};
    const Tree emptyRoot = {{"share/Kestrin", std::nullopt}};
    const Tree setUp = {{fileOfBefore, oldFile}};
    const Tree lived = with(setUp, {{historyFile, oldLine}, {serviceFile, oldServiceLine}});
    const std::string inRoot = "share/Kestrin/";
    const std::string oldAdded = fileOf(formerAddedServices());
    const std::string newAdded = fileOf(newAddedServices());
    const std::string addedFile = inRoot + "custom-providers.json";
    const std::string addedBackup = inRoot + "backups/custom-providers-2026-01-31T09-05-00Z.json";
    const Tree withAdded = with(lived, {{addedFile, oldAdded}});

    using enum Effect;
    return {
        {"firstSave", Replaces, place, fileOfBefore, newFile, saveWithBackup},
        {"firstSaveBelowMissingDirectories", Replaces, {}, "home/share/Kestrin/sites.json", newFile, saveWithBackup,
            "home/share/Kestrin"},
        {"firstSaveIntoAnEmptyRoot", Replaces, emptyRoot, fileOfBefore, newFile, saveWithBackup},
        {"save", Replaces, lived, fileOfBefore, newFile, save},
        {"firstSaveWithABackup", Replaces, lived, fileOfBefore, newFile, saveWithBackup, "share/Kestrin", true},
        {"saveWithABackup", Replaces, with(lived, {{backupFile, "{}\n"}}), fileOfBefore, newFile, saveWithBackup,
            "share/Kestrin", true},
        {"firstSaveOfAddedServices", Replaces, lived, addedFile, newAdded, saveAddedServicesWithBackup},
        {"saveOfAddedServices", Replaces, withAdded, addedFile, newAdded, saveAddedServices},
        {"saveOfAddedServicesWithAFirstBackup", Replaces, withAdded, addedFile, newAdded,
            saveAddedServicesWithBackup, "share/Kestrin", true},
        {"saveOfAddedServicesWithABackup", Replaces,
            with(withAdded, {{addedBackup, oldAdded}, {backupFile, "{}\n"}}), addedFile, newAdded,
            saveAddedServicesWithBackup, "share/Kestrin", true},
        {"replaceNotificationSettings", Replaces, with(lived, {{inRoot + "notification-settings.json", "{}\n"}}),
            inRoot + "notification-settings.json", replaced, replaceNotificationSettings},
        {"replaceNotificationLedger", Replaces, lived, inRoot + "notification-ledger.json", replaced,
            replaceNotificationLedger},
        {"writeNewFile", Creates, with(lived, {{inRoot + "backups", std::nullopt}}),
            inRoot + "backups/custom-providers-2026.json", replaced, createNewFile},
        {"firstAppend", Begins, setUp, historyFile, newLine, append},
        {"append", Appends, lived, historyFile, oldLine + newLine, append},
        {"sealingAppend", Appends, with(setUp, {{historyFile, torn}}), historyFile, torn + "\n" + newLine, append},
        {"firstServiceAppend", Begins, setUp, serviceFile, newServiceLine, appendForService},
        {"serviceAppend", Appends, lived, serviceFile, oldServiceLine + newServiceLine, appendForService},
        {"readEverything", Reads,
            with(lived, {{backupFile, oldFile}, {inRoot + "notification-settings.json", "{}\n"}}), fileOfBefore,
            oldFile, readEverything},
    };
}

} // namespace

std::optional<std::string> Operation::former() const {
    const auto found = before.find(file);
    return found == before.end() ? std::nullopt : found->second;
}

void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

const std::vector<Operation>& operations() {
    static const std::vector<Operation> all = makeOperations();
    return all;
}

const Operation& operationNamed(std::string_view name) {
    const auto found = std::ranges::find(operations(), name, &Operation::name);
    if (found == operations().end()) throw std::invalid_argument("there is no operation " + std::string(name));
    return *found;
}

} // namespace kestrin
