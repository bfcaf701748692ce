#include "monitoring/MonitorHarness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

namespace kestrin {

namespace {

std::string stamp(std::optional<int> second) {
    static int latest = 0;
    const int number = second.value_or(++latest);
    char text[32];
    std::snprintf(text, sizeof text, "2026-01-%02dT%02d:%02d:%02dZ", 1 + number / 86400 % 28, number / 3600 % 24,
        number / 60 % 60, number % 60);
    return text;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string jsonOf(const SiteConfiguration& configuration) {
    std::string text = "{\"sites\": [";
    for (const SiteDefinition& site : configuration.sites) {
        if (text.back() != '[') text += ", ";
        text += "{\"id\": " + quoted(site.id) + ", \"name\": " + quoted(site.name) +
                ", \"url\": " + quoted(site.url) + ", \"enabled\": " + (site.enabled ? "true" : "false") + "}";
    }
    text += "], ";
    if (configuration.activeSiteID) text += "\"active_site_id\": " + quoted(*configuration.activeSiteID) + ", ";
    text += "\"interval_seconds\": " + std::to_string(configuration.intervalSeconds) +
            ", \"provider_status\": {\"enabled\": " + (configuration.providerStatus.enabled ? "true" : "false") +
            ", \"provider_ids\": [";
    for (const std::string& id : configuration.providerStatus.providerIDs)
        text += (text.back() == '[' ? "" : ", ") + quoted(id);
    return text + "]}}\n";
}

} // namespace

SiteDefinition siteNamed(const std::string& id) {
    return {.id = id, .name = "Site " + id, .url = "https://" + id + ".example.com/", .enabled = true};
}

SiteConfiguration configurationOf(const std::vector<std::string>& siteIDs) {
    SiteConfiguration configuration;
    for (const std::string& id : siteIDs)
        configuration.sites.push_back(siteNamed(id));
    return configuration;
}

CheckRecord checkOf(const std::string& siteID, bool up, std::optional<int> second) {
    CheckRecord record;
    record.timestamp = stamp(second);
    record.siteID = siteID;
    record.url = "https://" + siteID + ".example.com/";
    record.dnsOK = true;
    record.ips = {"192.88.99.10"};
    record.httpStatus = up ? 200 : 503;
    record.elapsedMS = 42;
    record.up = up;
    if (!up) record.error = "HTTP 503";
    return record;
}

ProviderCheckRecord serviceCheckOf(const std::string& id, ProviderState state, std::optional<int> second) {
    ProviderCheckRecord record;
    record.timestamp = stamp(second);
    record.providerID = id;
    record.endpoint = "https://status.example.com/api/v2/status.json";
    record.httpStatus = 200;
    record.elapsedMS = 42;
    record.state = state;
    record.summary = "As it is";
    return record;
}

std::vector<CheckRecord> checksOf(const std::vector<SiteDefinition>& sites) {
    std::vector<CheckRecord> records;
    for (const SiteDefinition& site : sites)
        records.push_back(checkOf(site.id));
    return records;
}

std::vector<ProviderCheckRecord> serviceChecksOf(const std::vector<ProviderDefinition>& services) {
    std::vector<ProviderCheckRecord> records;
    for (const ProviderDefinition& service : services)
        records.push_back(serviceCheckOf(service.id));
    return records;
}

std::vector<std::string> idsOf(const std::vector<SiteDefinition>& sites) {
    std::vector<std::string> ids;
    std::ranges::transform(sites, std::back_inserter(ids), &SiteDefinition::id);
    return ids;
}

std::vector<std::string> idsOf(const std::vector<ProviderDefinition>& services) {
    std::vector<std::string> ids;
    std::ranges::transform(services, std::back_inserter(ids), &ProviderDefinition::id);
    return ids;
}

std::filesystem::path MonitorHarness::makeRoot() {
    std::string path = (std::filesystem::temp_directory_path() / "kestrin-monitor-XXXXXX").string();
    if (!::mkdtemp(path.data())) throw std::runtime_error("no temporary directory can be made");
    return path;
}

MonitorHarness::MonitorHarness() : root(makeRoot()), reader(root), files(root), writer(files) {}

MonitorHarness::~MonitorHarness() {
    model.reset();
    windUp();
    EXPECT_EQ(checks.inFlight(), 0U) << "a check outlived the model";
    EXPECT_EQ(clock.timerCount(), 0U) << "a task still sleeps";
    EXPECT_EQ(main.waiting(), 0U);
    EXPECT_EQ(tasks.size(), 0U) << "a task has not ended";
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

void MonitorHarness::windUp() {
    settle();
    for (const auto& call : checks.siteCalls)
        call->answer.give({});
    for (const auto& call : checks.serviceCalls)
        call->answer.give({});
    notifications.answerEverything();
    settle();
}

AppModel::Collaborators MonitorHarness::collaborators() {
    const auto wallClock = [this] {
        return std::chrono::system_clock::time_point(
            std::chrono::duration_cast<std::chrono::system_clock::duration>(clock.now().time_since_epoch()));
    };
    return {.reader = reader,
        .writer = writer,
        .customProviderStore = customProviders,
        .services = services,
        .checkRunner = checks.runner(),
        .notificationCoordinator = notifications,
        .tasks = tasks,
        .mainExecutor = main,
        .clock = clock,
        .loadPool = loads,
        .wallClock = wallClock};
}

void MonitorHarness::create() {
    model = std::make_unique<AppModel>(collaborators());
}

void MonitorHarness::load() {
    create();
    settle();
}

void MonitorHarness::load(const SiteConfiguration& configuration) {
    writeSites(configuration);
    load();
}

void MonitorHarness::settle() {
    do
        main.runUntilIdle();
    while (loads.waiting() > 0 && (loads.finish(), true));
}

void MonitorHarness::advance(std::chrono::seconds duration) {
    clock.advance(duration);
    settle();
}

void MonitorHarness::answerChecks() {
    for (const auto& call : checks.siteCalls)
        if (!call->answer.isGiven()) call->answer.give(checksOf(call->definitions));
    for (const auto& call : checks.serviceCalls)
        if (!call->answer.isGiven()) call->answer.give(serviceChecksOf(call->definitions));
    settle();
}

void MonitorHarness::answerChecksAtOnce() {
    checks.siteResults = checksOf;
    checks.serviceResults = serviceChecksOf;
}

void MonitorHarness::writeSites(const SiteConfiguration& configuration) const {
    writeSitesText(jsonOf(configuration));
}

void MonitorHarness::writeSitesText(const std::string& text) const {
    const std::filesystem::path temporary = root.string() + ".new";
    std::ofstream(temporary, std::ios::binary) << text;
    // File systems count time in coarse steps and use inode numbers again.
    static std::time_t edits = 1'000'000'000;
    const struct timespec times[2] = {{.tv_sec = ++edits, .tv_nsec = 0}, {.tv_sec = edits, .tv_nsec = 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, temporary.c_str(), times, 0), 0);
    std::filesystem::rename(temporary, sitesPath());
}

void MonitorHarness::removeSites() const {
    std::filesystem::remove(sitesPath());
}

SiteHistoryProjection MonitorHarness::historyOnDisk(const std::string& siteID) const {
    return reader.loadSiteSnapshots({siteNamed(siteID)}).front().history;
}

ProviderHistoryProjection MonitorHarness::serviceHistoryOnDisk(const std::string& id) const {
    return reader.loadProviderSnapshots({FakeServices::serviceNamed(id, id)}).front().history;
}

const SiteSnapshot& MonitorHarness::snapshot(const std::string& siteID) const {
    const auto found = std::ranges::find(
        model->snapshots(), siteID, [](const SiteSnapshot& shown) -> const std::string& { return shown.site.id; });
    if (found == model->snapshots().end()) throw std::out_of_range("no snapshot of " + siteID);
    return *found;
}

} // namespace kestrin
