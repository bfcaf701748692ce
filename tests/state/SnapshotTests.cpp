#include "fakes/TemporaryDirectory.h"
#include "model/MessageError.h"
#include "state/StateErrors.h"
#include "state/StateReader.h"
#include "state/StateWriter.h"
#include "state/ThrownMessage.h"
#include "tasks/CancellationError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace kestrin;
namespace fs = std::filesystem;
using testing::IsEmpty;

namespace {

SiteDefinition site(const std::string& id) {
    return {.id = id, .name = id, .url = "https://" + id + ".example"};
}

ProviderDefinition provider(const std::string& id) {
    ProviderDefinition definition;
    definition.id = id;
    return definition;
}

CheckRecord check(int n) {
    return {.timestamp = "2026-01-31T09:" + std::to_string(10 + n % 50) + ":00Z",
        .siteID = "a",
        .url = "https://a.example",
        .dnsOK = n % 5 != 0,
        .ips = {"192.0.2." + std::to_string(n)},
        .httpStatus = n % 7 == 0 ? std::nullopt : std::optional(200 + n),
        .elapsedMS = n,
        .up = n % 3 != 0,
        .error = n % 3 == 0 ? std::optional("The request timed out.") : std::nullopt};
}

ProviderCheckRecord providerCheck(int n) {
    ProviderCheckRecord record;
    record.timestamp = "2026-01-31T09:05:00Z";
    record.providerID = "p";
    record.endpoint = "https://p.example";
    record.elapsedMS = n;
    record.state = n % 2 == 0 ? ProviderState::operational : ProviderState::degraded;
    record.summary = std::to_string(n);
    return record;
}

/// A state directory that has been set up.
class LoadingSnapshots : public testing::Test {
protected:
    LoadingSnapshots() { root.write("sites.json", "{}"); }

    TemporaryDirectory root;
    StateReader reader{root.path()};
    StateWriter writer{root.path()};
};

} // namespace

TEST_F(LoadingSnapshots, givesAnEmptyProjectionAndNoRevisionForAMissingHistory) {
    const auto snapshots = reader.loadSiteSnapshots({site("a")});
    ASSERT_EQ(snapshots.size(), 1u);
    EXPECT_EQ(snapshots[0], (SiteSnapshot{.site = site("a"), .history = {}, .historyRevision = std::nullopt}));
    EXPECT_EQ(reader.loadProviderSnapshots({provider("p")})[0].historyRevision, std::nullopt);
    EXPECT_EQ(reader.historyRevision(HistoryKind::Website, "a"), HistoryFileRevision());
}

TEST_F(LoadingSnapshots, equalsTheFoldOfTheSameRecords) {
    SiteHistoryProjection history;
    ProviderHistoryProjection providerHistory;
    for (int n = 0; n < 100; ++n) {
        history.append(check(n));
        providerHistory.append(providerCheck(n));
        const HistoryFileRevision revision = writer.appendCheck(check(n)).after;
        const HistoryFileRevision providerRevision = writer.appendProviderCheck(providerCheck(n)).after;
        EXPECT_EQ(reader.loadSiteSnapshots({site("a")})[0],
            (SiteSnapshot{.site = site("a"), .history = history, .historyRevision = revision}))
            << n;
        EXPECT_EQ(reader.loadProviderSnapshots({provider("p")})[0],
            (ProviderSnapshot{
                .provider = provider("p"), .history = providerHistory, .historyRevision = providerRevision}))
            << n;
        EXPECT_EQ(reader.historyRevision(HistoryKind::Provider, "p"), providerRevision);
    }
}

TEST_F(LoadingSnapshots, dropsBadLinesInSilence) {
    writer.appendCheck(check(1));
    const std::string good = root.read("data/a.jsonl");
    root.write("data/a.jsonl", "not JSON\n" + good + "{}\n\n" + good + good.substr(0, 20));
    EXPECT_EQ(reader.loadSiteSnapshots({site("a")})[0].history.totalCheckCount, 2);
    writer.appendCheck(check(2));
    const SiteHistoryProjection history = reader.loadSiteSnapshots({site("a")})[0].history;
    EXPECT_EQ(history.totalCheckCount, 3) << "the torn line was sealed and the new one is read";
    EXPECT_EQ(history.recentChecks.back(), check(2));
}

TEST_F(LoadingSnapshots, readsLinesThatEndInCarriageReturnAndLineFeed) {
    writer.appendCheck(check(1));
    std::string line = root.read("data/a.jsonl");
    line.insert(line.size() - 1, "\r");
    root.write("data/a.jsonl", line + line);
    const SiteHistoryProjection history = reader.loadSiteSnapshots({site("a")})[0].history;
    EXPECT_EQ(history.totalCheckCount, 2);
    EXPECT_EQ(history.recentChecks.back(), check(1));
}

TEST_F(LoadingSnapshots, dropsOnlyTheServiceLineOfAnUnknownState) {
    writer.appendProviderCheck(providerCheck(0));
    std::string line = root.read("data/providers/p.jsonl");
    std::string unknown = line;
    unknown.replace(unknown.find("operational"), 11, "exploded");
    root.write("data/providers/p.jsonl", line + unknown + line);
    EXPECT_EQ(reader.loadProviderSnapshots({provider("p")})[0].history.recentChecks.size(), 2u);
}

TEST_F(LoadingSnapshots, keepsTheOrderOfTheList) {
    writer.appendCheck(check(1));
    const auto snapshots = reader.loadSiteSnapshots({site("b"), site("a"), site("c")});
    ASSERT_EQ(snapshots.size(), 3u);
    EXPECT_EQ(snapshots[0].site.id, "b");
    EXPECT_EQ(snapshots[1].history.totalCheckCount, 1);
    EXPECT_EQ(snapshots[2].site.id, "c");
    EXPECT_THAT(reader.loadSiteSnapshots({}), IsEmpty());
}

TEST_F(LoadingSnapshots, throwsTheErrorOfTheEarliestInTheList) {
    fs::create_directories(root / "data/bad.jsonl");
    fs::create_directories(root / "data/providers/bad.jsonl");
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(thrownMessage<HistoryReadError>(
                      [&] { static_cast<void>(reader.loadSiteSnapshots({site("bad"), site("..")})); }),
            "Kestrin history is not a regular file.");
        EXPECT_EQ(thrownMessage<StatePathError>(
                      [&] { static_cast<void>(reader.loadProviderSnapshots({provider(".."), provider("bad")})); }),
            "Unsafe history identifier was refused.");
    }
}

TEST_F(LoadingSnapshots, readsManyHistoriesInTheOrderOfTheList) {
    std::vector<SiteDefinition> sites;
    for (int i = 0; i < 60; ++i) {
        CheckRecord record = check(1);
        record.siteID = "site-" + std::to_string(i);
        for (int n = 0; n < i; ++n)
            writer.appendCheck(record);
        sites.push_back(site(record.siteID));
    }
    const auto snapshots = reader.loadSiteSnapshots(sites);
    ASSERT_EQ(snapshots.size(), sites.size());
    for (std::size_t i = 0; i < sites.size(); ++i) {
        EXPECT_EQ(snapshots[i].site, sites[i]);
        EXPECT_EQ(snapshots[i].history.totalCheckCount, static_cast<std::int64_t>(i));
    }
}

TEST_F(LoadingSnapshots, stopsAtTheFirstError) {
    fs::create_directories(root / "data/bad.jsonl");
    EXPECT_EQ(thrownMessage<HistoryReadError>(
                  [&] { static_cast<void>(reader.loadSiteSnapshots({site("a"), site("bad"), site("..")})); }),
        "Kestrin history is not a regular file.");
    EXPECT_EQ(thrownMessage<StatePathError>([&] { static_cast<void>(reader.loadSiteSnapshots({site("..")})); }),
        "Unsafe history identifier was refused.");
}

TEST_F(LoadingSnapshots, throwsTheCancellationWhenStopped) {
    writer.appendCheck(check(1));
    writer.appendProviderCheck(providerCheck(1));
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(static_cast<void>(reader.loadSiteSnapshots({site("a")}, source.get_token())), CancellationError);
    EXPECT_THROW(
        static_cast<void>(reader.loadProviderSnapshots({provider("p")}, source.get_token())), CancellationError);
}

namespace {

/// Snapshots in memory whose histories are not what their files say, so that it shows which of the two is taken.
class ReloadingSnapshots : public LoadingSnapshots {
protected:
    ReloadingSnapshots() {
        writer.appendCheck(check(1));
        writer.appendProviderCheck(providerCheck(1));
        known = reader.loadSiteSnapshots({site("a")});
        knownProviders = reader.loadProviderSnapshots({provider("p")});
        known[0].history.totalCheckCount = 1000;
        knownProviders[0].history.recentChecks[0].summary = "in memory";
    }

    std::int64_t total() { return reader.loadSiteSnapshots({site("a")}, known)[0].history.totalCheckCount; }
    std::string summary() {
        return reader.loadProviderSnapshots({provider("p")}, knownProviders)[0].history.recentChecks.back().summary;
    }

    std::vector<SiteSnapshot> known;
    std::vector<ProviderSnapshot> knownProviders;
};

} // namespace

TEST_F(ReloadingSnapshots, takesOverAHistoryWhoseFileIsUnchangedWithoutReadingIt) {
    EXPECT_EQ(total(), 1000);
    EXPECT_EQ(summary(), "in memory");
    SiteDefinition renamed = site("a");
    renamed.name = "Another name";
    const SiteSnapshot snapshot = reader.loadSiteSnapshots({renamed}, known)[0];
    EXPECT_EQ(snapshot.site, renamed) << "the definition is the new one";
    EXPECT_EQ(snapshot.historyRevision, known[0].historyRevision);
}

TEST_F(ReloadingSnapshots, readsAHistoryThatHasGrown) {
    writer.appendCheck(check(2));
    writer.appendProviderCheck(providerCheck(2));
    EXPECT_EQ(total(), 2);
    EXPECT_EQ(summary(), "2");
}

TEST_F(ReloadingSnapshots, readsAHistoryThatWasWrittenInPlaceOrReplaced) {
    const fs::path file = root / "data/a.jsonl";
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::nanoseconds(1));
    EXPECT_EQ(total(), 1);

    known[0].historyRevision = reader.historyRevision(HistoryKind::Website, "a");
    EXPECT_EQ(total(), 1000);
    const auto modified = fs::last_write_time(file);
    fs::copy_file(file, root / "data/copy");
    fs::last_write_time(root / "data/copy", modified);
    fs::rename(root / "data/copy", file);
    EXPECT_EQ(total(), 1) << "another file of the same size and time";
}

TEST_F(ReloadingSnapshots, givesAnEmptyHistoryForAFileThatIsGone) {
    fs::remove(root / "data/a.jsonl");
    for (const auto& revision :
        {known[0].historyRevision, std::optional<HistoryFileRevision>(), std::optional(HistoryFileRevision())}) {
        known[0].historyRevision = revision;
        EXPECT_EQ(reader.loadSiteSnapshots({site("a")}, known)[0],
            (SiteSnapshot{.site = site("a"), .history = {}, .historyRevision = std::nullopt}));
    }
}

TEST_F(ReloadingSnapshots, readsAHistoryThatHasComeIntoBeing) {
    for (const auto& revision : {std::optional<HistoryFileRevision>(), std::optional(HistoryFileRevision())}) {
        known[0].historyRevision = revision;
        EXPECT_EQ(total(), 1);
    }
}

TEST_F(ReloadingSnapshots, takesOverNothingFromAnotherTarget) {
    root.write("data/b.jsonl", root.read("data/a.jsonl"));
    const auto snapshots = reader.loadSiteSnapshots({site("b"), site("a"), site("c")}, known);
    EXPECT_EQ(snapshots[0].history.totalCheckCount, 1);
    EXPECT_EQ(snapshots[1].history.totalCheckCount, 1000);
    EXPECT_EQ(snapshots[2].history.totalCheckCount, 0);
}

TEST_F(ReloadingSnapshots, refusesAHistoryThatBecameALinkOrADirectory) {
    const fs::path file = root / "data/a.jsonl";
    fs::rename(file, root / "real.jsonl");
    fs::create_symlink("../real.jsonl", file);
    EXPECT_EQ(
        thrownMessage<StatePathError>([&] { total(); }), "Symbolic links are not allowed in Kestrin state paths.");
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(thrownMessage<HistoryReadError>([&] { total(); }), "Kestrin history is not a regular file.");
}

TEST_F(ReloadingSnapshots, throwsTheCancellationWhenStoppedEvenIfNothingIsRead) {
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(
        static_cast<void>(reader.loadSiteSnapshots({site("a")}, known, source.get_token())), CancellationError);
    EXPECT_THROW(
        static_cast<void>(reader.loadProviderSnapshots({provider("p")}, knownProviders, source.get_token())),
        CancellationError);
}
