// service_check HOST ADDRESS PORT BUNDLE COUNT - makes COUNT checks of one status service, one after the other, as
// the program makes them, all of it but the system's name look-up, which answers from a script. Prints the CPU time
// of this whole process for one, in microseconds. The authorities are read before.
#include "CPUTime.h"
#include "CheckParts.h"
#include "destinations/URLSplitter.h"
#include "services/ProviderChecker.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using namespace std::chrono_literals;

class Checks {
public:
    explicit Checks(const bench::Target& target) : parts_(target) {
        const std::string page = "https://" + target.host + ":" + target.port + "/";
        service_.id = "provider-1";
        service_.adapter = {"statuspage-v2", 1};
        service_.publicStatusURL = splitURL(page).value();
        service_.statusURLs = {splitURL(page + "api/v2/status.json").value()};
    }

    void make() {
        const ProviderCheckRecord record = parts_.recordOf(checker_.checkProvider(service_, network_, 15s));
        if (record.state == ProviderState::unknown) throw std::runtime_error(record.error.value_or("No state."));
    }

private:
    ProviderDefinition service_;
    bench::CheckParts parts_;
    ProviderCheckDependencies network_ = liveProviderCheckDependencies(parts_.client(), parts_.resolver());
    ProviderChecker checker_{parts_.clock(), bench::CheckParts::now};
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 6) {
        std::cerr << "usage: service_check HOST ADDRESS PORT BUNDLE COUNT\n";
        return EXIT_FAILURE;
    }
    try {
        Checks checks({argv[1], argv[2], argv[3], argv[4]});
        std::cout << bench::cpuTimeOfOne(std::atoi(argv[5]), [&] { checks.make(); }).count() << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
