// feed_reading (ADAPTER|nlohmann) FILE COUNT - reads a status feed COUNT times, by one of our adapters or by plain
// parsing of the same bytes, and prints the CPU time of one reading in microseconds and by how many kilobytes the
// process grew at most.
#include "CPUTime.h"
#include "services/ProviderAdapters.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;

/// The most that was resident since the program began. What getrusage tells begins with its parent's.
long peakKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::atol(line.c_str() + line.find_first_of("0123456789"));
    throw std::runtime_error("The system does not tell the peak of the memory.");
}

void read(const std::string& reader, const std::string& feed) {
    if (reader == "nlohmann") {
        if (!nlohmann::json::parse(feed).is_object()) throw std::runtime_error("The feed is no object.");
    } else if (parseProviderStatus(feed, reader, 1).state == ProviderState::unknown) {
        throw std::runtime_error("The feed has no state.");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: feed_reading (ADAPTER|nlohmann) FILE COUNT\n";
        return EXIT_FAILURE;
    }
    try {
        std::ifstream file(argv[2]);
        const std::string feed(std::istreambuf_iterator<char>(file), {});
        const int count = std::atoi(argv[3]);
        const long peakBefore = peakKilobytes();
        const bench::Microseconds before = bench::cpuTime();
        for (int index = 0; index < count; ++index)
            read(argv[1], feed);
        std::cout << (bench::cpuTime() - before).count() / count << " " << peakKilobytes() - peakBefore << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
