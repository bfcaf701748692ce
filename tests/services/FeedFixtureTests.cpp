#include "services/ProviderAdapterParseError.h"
#include "services/ProviderAdapters.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

// feeds/ADAPTER/NAME.in.json is a response as a feed sends it, NAME.out.json what the adapter makes of it. To add a
// case, add the two files.

namespace kestrin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view inputEnding = ".in.json";
constexpr std::string_view outcomeEnding = ".out.json";

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error(file.string() + " cannot be read");
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// What was made of a response, in the form of the kept outcomes.
std::string outcomeOf(const std::string& response, const std::string& adapterID) {
    try {
        const ParsedProviderStatus status = parseProviderStatus(response, adapterID, 1);
        JSONValue outcome = JSONValue::object({
            {"state", persistedName(status.state)},
            {"summary", status.summary},
        });
        if (status.officialUpdatedAt) outcome.add("official_updated_at", *status.officialUpdatedAt);
        if (status.pageName) outcome.add("page_name", *status.pageName);
        return writePretty(outcome);
    } catch (const ProviderAdapterParseError& refusal) {
        const bool malformed = refusal.kind == ProviderAdapterParseError::Kind::malformed;
        return writePretty(JSONValue::object({{"error", malformed ? "malformed" : "unrecognized"}}));
    }
}

/// The names of the cases with a file of that ending.
std::set<std::string> casesIn(const fs::path& folder, std::string_view ending) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename();
        if (name.ends_with(ending)) names.insert(name.substr(0, name.size() - ending.size()));
    }
    return names;
}

class FeedFixtures : public testing::TestWithParam<ProviderAdapterIdentity> {};

TEST_P(FeedFixtures, comeOutAsTheyStandBesideThem) {
    const fs::path folder = fs::path(KESTRIN_FEED_FIXTURES) / GetParam().id;
    const std::set<std::string> cases = casesIn(folder, inputEnding);
    EXPECT_GE(cases.size(), 30U) << "in " << folder;
    EXPECT_EQ(cases, casesIn(folder, outcomeEnding)) << "an input without an outcome, or the reverse";
    for (const std::string& name : cases) {
        const std::string response = contentOf(folder / (name + std::string(inputEnding)));
        EXPECT_EQ(outcomeOf(response, GetParam().id), contentOf(folder / (name + std::string(outcomeEnding))))
            << GetParam().id << "/" << name;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachAdapter, FeedFixtures, testing::ValuesIn(supportedProviderAdapters()),
    [](const testing::TestParamInfo<ProviderAdapterIdentity>& tested) {
        std::string name = tested.param.id;
        std::ranges::replace(name, '-', '_');
        return name;
    });

TEST(FeedFixtureFolders, areThereForNoOtherAdapter) {
    std::set<std::string> folders;
    for (const auto& entry : fs::directory_iterator(KESTRIN_FEED_FIXTURES))
        folders.insert(entry.path().filename());
    std::set<std::string> adapters;
    for (const ProviderAdapterIdentity& adapter : supportedProviderAdapters())
        adapters.insert(adapter.id);
    EXPECT_EQ(folders, adapters);
}

} // namespace
} // namespace kestrin
