// service_check HOST ADDRESS PORT BUNDLE COUNT - makes COUNT checks of one status service, one after the other, as
// the program makes them, all of it but the system's name look-up, which answers from a script. Prints the CPU time
// of this whole process for one, in microseconds. The authorities are read before.
#include "CPUTime.h"
#include "destinations/URLSplitter.h"
#include "fakes/ScriptedResolver.h"
#include "fakes/VirtualClock.h"
#include "http/CurlTransport.h"
#include "services/ProviderChecker.h"
#include "tasks/SerialExecutor.h"
#include "tasks/Spawn.h"
#include "tasks/ThreadPool.h"

#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using namespace std::chrono_literals;

/// The parts of a check, put together as the program puts them together.
class Checks {
public:
    Checks(const std::string& host, const std::string& address, const std::string& port, const std::string& bundle)
        : transport_({bundle}) {
        names_->answer(host, {address});
        service_.id = "provider-1";
        service_.adapter = {"statuspage-v2", 1};
        service_.publicStatusURL = splitURL("https://" + host + ":" + port + "/").value();
        service_.statusURLs = {splitURL("https://" + host + ":" + port + "/api/v2/status.json").value()};
    }

    void make() {
        std::promise<ProviderCheckRecord> ended;
        auto task = told(checker_.checkProvider(service_, network_, 15s), &ended);
        spawn(executor_, std::move(task));
        const ProviderCheckRecord record = ended.get_future().get();
        if (record.state == ProviderState::unknown) throw std::runtime_error(record.error.value_or("No state."));
    }

private:
    static Task<> told(Task<ProviderCheckRecord> check, std::promise<ProviderCheckRecord>* ended) {
        ProviderCheckRecord record = co_await std::move(check);
        ended->set_value(std::move(record));
    }

    ProviderDefinition service_;
    VirtualClock clock_;
    ThreadPool pool_{12};
    ThreadPool resolverPool_{12};
    SerialExecutor executor_{pool_};
    std::shared_ptr<ScriptedResolver> names_ = std::make_shared<ScriptedResolver>();
    std::stop_source shutdown_;
    BackgroundResolver resolver_{resolverPool_, names_, clock_, shutdown_.get_token()};
    CurlTransport transport_;
    FreshHTTPClient client_{FreshHTTPServices{executor_, clock_, pool_, transport_, resolver_}};
    ProviderCheckDependencies network_ = liveProviderCheckDependencies(client_, resolver_);
    ProviderChecker checker_{
        clock_, [] { return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()); }};
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::cerr << "usage: service_check HOST ADDRESS PORT BUNDLE COUNT\n";
        return EXIT_FAILURE;
    }
    try {
        Checks checks(argv[1], argv[2], argv[3], argv[4]);
        for (int warmingUp = 0; warmingUp < 3; ++warmingUp)
            checks.make();
        const int count = std::atoi(argv[5]);
        const bench::Microseconds before = bench::cpuTime();
        for (int index = 0; index < count; ++index)
            checks.make();
        std::cout << (bench::cpuTime() - before).count() / count << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
