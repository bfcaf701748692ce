#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

// Runs a target over kept inputs, with any compiler: the program for CI, and for looking at a finding in a
// debugger.

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> inputsIn(const fs::path& place) {
    if (!fs::is_directory(place)) return {place};
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(place))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

void replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("it cannot be read");
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    // Said before it runs, since a broken promise ends the program.
    std::fprintf(stderr, "%s\n", file.c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int count, char** arguments) try {
    std::size_t replayed = 0;
    for (int place = 1; place < count; ++place) {
        for (const fs::path& file : inputsIn(arguments[place])) {
            replay(file);
            ++replayed;
        }
    }
    std::printf("%zu inputs kept what is promised.\n", replayed);
    return replayed == 0 ? 1 : 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "The last input named above ended in: %s\n", error.what());
    return 1;
}
