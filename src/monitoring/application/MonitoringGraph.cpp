#include "monitoring/application/MonitoringGraph.h"

#include "http/CurlTransport.h"
#include "http/SystemNameResolver.h"
#include "monitoring/LiveCheckRunner.h"
#include "probing/WebsiteChecker.h"
#include "services/CustomProviderStore.h"
#include "services/KnownServices.h"
#include "services/ProviderChecker.h"

#include <chrono>
#include <utility>

namespace kestrin {

namespace {

// Two checks of a kind are in flight at most, each with one transfer; the rest is for loads and the serial owner
// of checks and requests, who is one and the same: changing between two would wake a thread each time.
constexpr std::size_t workThreads = 12;
// Where no further thread can be had, checks go on one by one on this one.
constexpr std::size_t standingThreads = 1;
constexpr std::chrono::milliseconds idleTime = std::chrono::seconds(1);
// Resolutions cannot be stopped: beside those in use there must be room for every one that may be left behind.
constexpr std::size_t resolverThreads = BackgroundResolver::defaultMaximumAbandoned + 8;
constexpr std::chrono::milliseconds shutdownPatience = std::chrono::seconds(2);

std::chrono::sys_seconds wallClockSeconds() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

} // namespace

struct MonitoringGraph::Checkers {
    Checkers(const ProxySettings& proxies, Executor& owner, Clock& clock, BlockingPool& pool,
        BlockingPool& resolverPool, const std::stop_token& shutdown)
        : transport(TrustStore::systemBundles(), proxies),
          resolver(resolverPool, std::make_shared<SystemNameResolver>(), clock, shutdown),
          client(FreshHTTPServices{owner, clock, pool, transport, resolver}),
          websites(client, resolver, clock, wallClockSeconds), services(clock, wallClockSeconds),
          network(liveProviderCheckDependencies(client, resolver)) {}

    CurlTransport transport;
    BackgroundResolver resolver;
    FreshHTTPClient client;
    WebsiteChecker websites;
    ProviderChecker services;
    ProviderCheckDependencies network;
};

MonitoringGraph::MonitoringGraph(const std::filesystem::path& stateRoot, Executor& mainExecutor, Clock& clock)
    : mainExecutor_(mainExecutor), pool_(workThreads, idleTime, standingThreads), resolverPool_(resolverThreads),
      checkExecutor_(pool_), clock_(clock), proxySettings_(ProxySettings::fromEnvironment()), writer_(stateRoot) {
    SiteCheck checkSite = [this](SiteDefinition site, std::chrono::milliseconds timeout) {
        return checkers().websites.checkWebsite(std::move(site), timeout);
    };
    ProviderCheck checkService = [this](ProviderDefinition service, std::chrono::milliseconds timeout) {
        const Checkers& live = checkers();
        return live.services.checkProvider(std::move(service), live.network, timeout);
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

// A transport brings libcurl and OpenSSL to life, which a program that only rests in the panel need not pay for.
const MonitoringGraph::Checkers& MonitoringGraph::checkers() {
    std::call_once(checkersAreMade_, [this] {
        checkers_ = std::make_unique<Checkers>(
            proxySettings_, checkExecutor_, clock_, pool_, resolverPool_, shutdown_.get_token());
    });
    return *checkers_;
}

bool MonitoringGraph::shutDown(const RunMainUntil& runMainUntil) {
    model_->shutdown();
    shutdown_.request_stop();
    tasks_.cancel();
    const TaskHandle<> end = spawn(mainExecutor_, tasks_.join());
    const bool tasksEnded = runMainUntil([&end] { return end.done(); });
    // A look-up that hangs ends with the process; otherwise its threads are gone before anything that they use.
    const bool lookupsEnded =
        resolverPool_.waitUntilIdle(std::chrono::milliseconds(0)) && resolverPool_.shutDown(shutdownPatience);
    return pool_.shutDown(shutdownPatience) && tasksEnded && lookupsEnded;
}

} // namespace kestrin
