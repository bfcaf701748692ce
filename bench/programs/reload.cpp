// reload ROOT ROUNDS - loads the state and loads it again with the histories that the first load gave, ROUNDS
// times, as the model does. Prints a line for each round: "FIRST AGAIN BYTES", both in microseconds, and the bytes
// that the second load read from files other than "sites.json".
#include "monitoring/ModelLoader.h"
#include "services/CustomProviderStore.h"
#include "services/KnownServices.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr ssize_t countingBytes = 32;

/// What the whole process has taken in by read calls so far.
std::int64_t bytesRead() {
    // Always the same number of bytes, so that what the counting itself reads can be taken off.
    std::array<char, countingBytes + 1> text{};
    const int descriptor = ::open("/proc/self/io", O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(descriptor, text.data(), countingBytes);
    ::close(descriptor);
    std::int64_t value = 0;
    if (count != countingBytes || std::sscanf(text.data(), "rchar: %" SCNd64, &value) != 1)
        throw std::runtime_error("The system does not count what a process reads.");
    return value;
}

LoadedConfigured load(const ModelLoader& loader, const KnownHistories& known) {
    AppModelLoadResult result = loader.load(known, {});
    if (const auto* failure = std::get_if<LoadFailed>(&result)) throw std::runtime_error(failure->message);
    return std::get<LoadedConfigured>(std::move(result));
}

void round(const ModelLoader& loader, std::int64_t configurationBytes) {
    const auto begin = std::chrono::steady_clock::now();
    LoadedConfigured first = load(loader, {});
    const auto between = std::chrono::steady_clock::now();

    const KnownHistories known{std::move(first.snapshots), std::move(first.providerSnapshots)};
    const std::int64_t before = bytesRead();
    const auto beginAgain = std::chrono::steady_clock::now();
    const LoadedConfigured again = load(loader, known);
    const auto end = std::chrono::steady_clock::now();
    const std::int64_t bytes = bytesRead() - before - countingBytes - configurationBytes;
    if (again.snapshots != known.sites) throw std::runtime_error("The second load gave something else.");
    std::cout << Microseconds(between - begin).count() << " " << Microseconds(end - beginAgain).count() << " "
              << bytes << "\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: reload ROOT ROUNDS\n";
        return EXIT_FAILURE;
    }
    const std::filesystem::path root = argv[1];
    try {
        const ModelLoader loader(
            StateReader(root), std::make_shared<CustomProviderStore>(root), std::make_shared<KnownServices>());
        const auto configurationBytes = static_cast<std::int64_t>(std::filesystem::file_size(root / "sites.json"));
        for (int rounds = std::atoi(argv[2]); rounds > 0; --rounds)
            round(loader, configurationBytes);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
