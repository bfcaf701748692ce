// dashboard_content ROOT COUNT - makes what the dashboard shows of 25 websites and 10 status services with full
// histories, in the empty directory ROOT, COUNT times for each of its two pages. Prints "AGAIN FIRST" in
// microseconds, both of the page that takes longer: one drawing, and the first one of a thread, which makes its
// formatters.
#include "CPUTime.h"
#include "dashboard/DashboardPresentation.h"
#include "fakes/FakeCustomProviders.h"
#include "fakes/FakeNotifications.h"
#include "fakes/FakeServices.h"
#include "fakes/ManualExecutor.h"
#include "fakes/ManualPool.h"
#include "fakes/ScriptedCheckRunner.h"
#include "fakes/VirtualClock.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <variant>

namespace {

using namespace kestrin;

constexpr int websiteCount = 25;
constexpr int serviceCount = 10;
constexpr int checkCount = 30;
constexpr std::chrono::sys_seconds firstCheck{std::chrono::seconds(1'770'000'000)};

void writeState(StateWriter& writer, FakeServices& services) {
    SiteConfiguration configuration;
    configuration.providerStatus = {.enabled = true, .providerIDs = {}};
    for (int index = 0; index < websiteCount; ++index) {
        const std::string id = "site-" + std::to_string(index);
        configuration.sites.push_back(
            {.id = id, .name = "Website " + id, .url = "https://" + id + ".example.com/"});
    }
    services.included.clear();
    for (int index = 0; index < serviceCount; ++index) {
        const std::string id = "service-" + std::to_string(index);
        services.included.push_back(FakeServices::serviceNamed(id, "Service " + id));
        configuration.providerStatus.providerIDs.push_back(id);
    }
    (void)writer.saveConfiguration(configuration, Backup::None);

    for (int check = 0; check < checkCount; ++check) {
        // The checks of one cycle end at nearly the same time.
        const std::chrono::sys_seconds cycle = firstCheck + std::chrono::minutes(5 * check);
        for (std::size_t index = 0; index < configuration.sites.size(); ++index) {
            const SiteDefinition& site = configuration.sites[index];
            CheckRecord record;
            record.timestamp = timestampText(cycle + std::chrono::seconds(index % 3));
            record.siteID = site.id;
            record.url = site.url;
            record.dnsOK = true;
            record.ips = {"192.88.99.10", "192.88.99.11"};
            record.httpStatus = 200;
            record.elapsedMS = 80 + 37 * check;
            record.up = check % 7 != 0;
            (void)writer.appendCheck(record);
        }
        for (std::size_t index = 0; index < services.included.size(); ++index) {
            ProviderCheckRecord record;
            record.timestamp = timestampText(cycle + std::chrono::seconds(index % 3));
            record.providerID = services.included[index].id;
            record.endpoint = "https://status.example.com/api/v2/status.json";
            record.httpStatus = 200;
            record.elapsedMS = 80 + 37 * check;
            record.state = check % 7 == 0 ? ProviderState::degraded : ProviderState::operational;
            record.summary = "All systems operational";
            (void)writer.appendProviderCheck(record);
        }
    }
}

/// A loaded model that does nothing more.
struct LoadedModel {
    explicit LoadedModel(const std::filesystem::path& root) : reader(root), writer(root) {
        writeState(writer, *services);
        model = std::make_unique<AppModel>(AppModel::Collaborators{.reader = reader,
            .writer = writer,
            .customProviderStore = std::make_shared<FakeCustomProviders>(),
            .services = services,
            .checkRunner = checks.runner(),
            .notificationCoordinator = notifications,
            .tasks = tasks,
            .mainExecutor = main,
            .clock = clock,
            .loadPool = loads,
            .wallClock = [] { return std::chrono::system_clock::now(); }});
        settle();
        if (model->isLoading() || model->loadError()) throw std::runtime_error("The model has not loaded.");
    }
    ~LoadedModel() {
        model.reset();
        settle();
    }
    LoadedModel(const LoadedModel&) = delete;
    LoadedModel& operator=(const LoadedModel&) = delete;

    void settle() {
        do
            main.runUntilIdle();
        while (loads.waiting() > 0 && (loads.finish(), true));
    }

    ManualExecutor main;
    ManualPool loads;
    VirtualClock clock;
    TaskScope tasks;
    ScriptedCheckRunner checks;
    FakeNotifications notifications;
    std::shared_ptr<FakeServices> services = std::make_shared<FakeServices>();
    StateReader reader;
    StateWriter writer;
    std::unique_ptr<AppModel> model;
};

void draw(const AppModel& model, const LocaleFormats& formats) {
    const DashboardContent content = dashboardContent(model, nullptr, SettingsAccess::available, formats);
    const bool isWhole = model.monitorPage() == MonitorPage::sites
                             ? std::get<WebsitePageContent>(content.body).chart.bars.size() == checkCount
                             : std::get<ServicesPageContent>(content.body).services.size() == serviceCount;
    if (!isWhole) throw std::runtime_error("The content is not whole.");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: dashboard_content ROOT COUNT\n";
        return EXIT_FAILURE;
    }
    try {
        const int count = std::atoi(argv[2]);
        const LocaleFormats formats("en_US.UTF-8", "en_US.UTF-8");
        LoadedModel loaded(argv[1]);
        AppModel& model = *loaded.model;
        bench::Microseconds again{};
        bench::Microseconds first{};
        for (const MonitorPage page : {MonitorPage::sites, MonitorPage::providers}) {
            model.setMonitorPage(page);
            again = std::max(again, bench::cpuTimeOfOne(count, [&] { draw(model, formats); }));
            // Formatters belong to a thread, so a new one begins without any.
            std::thread([&] {
                const auto begin = std::chrono::steady_clock::now();
                draw(model, formats);
                first = std::max<bench::Microseconds>(first, std::chrono::steady_clock::now() - begin);
            }).join();
        }
        std::cout << again.count() << " " << first.count() << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
