// history_fold ROOT SITE-ID... - loads the histories of these websites as the program does at its start, and prints
// how many checks they hold.
#include "state/StateReader.h"

#include <cstdint>
#include <exception>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    std::vector<kestrin::SiteDefinition> sites;
    for (int index = 2; index < argc; ++index)
        sites.push_back({.id = argv[index], .name = argv[index], .url = "https://www.example/"});
    try {
        std::int64_t checks = 0;
        for (const auto& snapshot : kestrin::StateReader(argc > 1 ? argv[1] : "").loadSiteSnapshots(sites))
            checks += snapshot.history.totalCheckCount;
        std::cout << checks << "\n";
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return 1;
    }
}
