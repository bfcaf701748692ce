#include "monitoring/application/MonitoringGraph.h"

#include "http/ProxySettings.h"
#include "monitoring/LiveCheckRunner.h"
#include "probing/BackgroundResolver.h"
#include "services/CustomProviderStore.h"
#include "services/KnownServices.h"

#include <chrono>
#include <utility>

namespace kestrin {

namespace {

// Two checks of a kind are in flight at most, each with one look-up or one transfer; the rest is for loads and the
// serial owner of checks and requests, who is one and the same: changing between two would wake a thread each time.
// For the same reason there is one pool for everything: the thread that looked a name up goes on with the check.
constexpr std::size_t workThreads = 20;
// Look-ups cannot be stopped: beside all of that there must be room for every one that may be left behind.
constexpr std::size_t maximumThreads = workThreads + BackgroundResolver::defaultMaximumAbandoned;
// Where no further thread can be had, checks go on one by one on this one.
constexpr std::size_t standingThreads = 1;
constexpr std::chrono::milliseconds idleTime = std::chrono::seconds(1);
constexpr std::chrono::milliseconds shutdownPatience = std::chrono::seconds(2);

} // namespace

MonitoringGraph::MonitoringGraph(const std::filesystem::path& stateRoot, Executor& mainExecutor, Clock& clock)
    : mainExecutor_(mainExecutor), pool_(maximumThreads, idleTime, standingThreads), checkExecutor_(pool_),
      checkers_({.owner = checkExecutor_,
          .clock = clock,
          .pool = pool_,
          .proxies = ProxySettings::fromEnvironment(),
          .shutdown = shutdown_.get_token()}),
      writer_(stateRoot) {
    SiteCheck checkSite = [this](SiteDefinition site, std::chrono::milliseconds timeout) {
        return checkers_.checkWebsite(std::move(site), timeout);
    };
    ProviderCheck checkService = [this](ProviderDefinition service, std::chrono::milliseconds timeout) {
        return checkers_.checkProvider(std::move(service), timeout);
    };
    model_ = std::make_unique<AppModel>(AppModel::Collaborators{
        .reader = StateReader(stateRoot),
        .writer = writer_,
        .customProviderStore = std::make_shared<CustomProviderStore>(stateRoot),
        .services = std::make_shared<KnownServices>(),
        .checkRunner = liveCheckRunner(checkExecutor_, std::move(checkSite), std::move(checkService)),
        .notificationCoordinator = notifications_,
        .tasks = tasks_,
        .mainExecutor = mainExecutor,
        .clock = clock,
        .loadPool = pool_,
        .wallClock = [] { return std::chrono::system_clock::now(); },
    });
}

MonitoringGraph::~MonitoringGraph() = default;

bool MonitoringGraph::shutDown(const RunMainUntil& runMainUntil) {
    model_->shutdown();
    shutdown_.request_stop();
    tasks_.cancel();
    const TaskHandle<> end = spawn(mainExecutor_, tasks_.join());
    const bool tasksEnded = runMainUntil([&end] { return end.done(); });
    // A look-up that hangs ends with the process: nobody waits for it.
    const bool lookupHangs = checkers_.abandonedLookups() > 0;
    const bool threadsEnded = pool_.shutDown(lookupHangs ? std::chrono::milliseconds(0) : shutdownPatience);
    return threadsEnded && tasksEnded;
}

} // namespace kestrin
