#include "state/StateReader.h"

#include "state/HistoryFold.h"
#include "state/HistoryScanner.h"
#include "state/ParallelLoop.h"
#include "tasks/CancellationError.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace kestrin {

namespace {

const SiteDefinition& targetOf(const SiteSnapshot& snapshot) {
    return snapshot.site;
}

const ProviderDefinition& targetOf(const ProviderSnapshot& snapshot) {
    return snapshot.provider;
}

/// The known snapshot of a target, as long as its file is the one that the snapshot was read from; else null. What
/// is there instead, and whether it may be read, is the scan's to judge.
template <class Snapshot>
const Snapshot* unchangedSnapshot(const std::vector<Snapshot>& known, const std::filesystem::path& root,
    HistoryKind kind, const std::string& id) {
    const auto snapshot = std::ranges::find(known, id, [](const Snapshot& each) { return targetOf(each).id; });
    if (snapshot == known.end() || !snapshot->historyRevision) return nullptr;
    struct stat status{};
    const std::filesystem::path path = historyFilePath(root, kind, id);
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    return revisionOf(status) == *snapshot->historyRevision ? &*snapshot : nullptr;
}

/// One target with the history that `known` holds of it, or else with what `Fold` makes of its lines.
template <class Fold, class Snapshot, class Target>
Snapshot loadSnapshot(const std::filesystem::path& root, HistoryKind kind, const Target& target,
    const std::vector<Snapshot>& known, const std::stop_token& stop, HugeLineTurn& turn) {
    if (stop.stop_requested()) throw CancellationError();
    if (const Snapshot* unchanged = unchangedSnapshot(known, root, kind, target.id))
        return {target, unchanged->history, unchanged->historyRevision};
    Fold fold;
    const auto revision = scanHistoryLines(root, kind, target.id, fold, stop, &turn);
    return {target, fold.finish(), revision};
}

template <class Fold, class Snapshot, class Target>
std::vector<Snapshot> loadSnapshots(const std::filesystem::path& root, HistoryKind kind,
    const std::vector<Target>& targets, const std::vector<Snapshot>& known, const std::stop_token& stop) {
    std::vector<Snapshot> snapshots(targets.size());
    HugeLineTurn turn;
    forEachInParallel(targets.size(), stop, [&](std::size_t index, const std::stop_token& loopStop) {
        snapshots[index] = loadSnapshot<Fold>(root, kind, targets[index], known, loopStop, turn);
    });
    return snapshots;
}

} // namespace

StateReader::StateReader(std::filesystem::path rootURL) : rootURL_(std::move(rootURL)) {}

HistoryFileRevision StateReader::historyRevision(HistoryKind kind, const std::string& id) const {
    return fileRevision(historyFilePath(rootURL_, kind, id), MissingFile::Allowed);
}

HistoryFileRevision StateReader::fileRevision(const std::filesystem::path& url, MissingFile missing) const {
    return kestrin::fileRevision(url, missing);
}

std::vector<SiteSnapshot> StateReader::loadSiteSnapshots(
    const std::vector<SiteDefinition>& sites, const std::stop_token& stop) const {
    return loadSiteSnapshots(sites, {}, stop);
}

std::vector<ProviderSnapshot> StateReader::loadProviderSnapshots(
    const std::vector<ProviderDefinition>& providers, const std::stop_token& stop) const {
    return loadProviderSnapshots(providers, {}, stop);
}

std::vector<SiteSnapshot> StateReader::loadSiteSnapshots(const std::vector<SiteDefinition>& sites,
    const std::vector<SiteSnapshot>& known, const std::stop_token& stop) const {
    return loadSnapshots<SiteHistoryFold>(rootURL_, HistoryKind::Website, sites, known, stop);
}

std::vector<ProviderSnapshot> StateReader::loadProviderSnapshots(const std::vector<ProviderDefinition>& providers,
    const std::vector<ProviderSnapshot>& known, const std::stop_token& stop) const {
    return loadSnapshots<ProviderHistoryFold>(rootURL_, HistoryKind::Provider, providers, known, stop);
}

} // namespace kestrin
