#include "state/StateReader.h"

#include "state/HistoryLineDecoder.h"
#include "state/HistoryScanner.h"

#include <utility>

namespace kestrin {

namespace {

/// Folds the lines of a website's history into a projection.
class SiteHistoryFold : public HistoryLineSink {
public:
    void take(std::string_view line) override {
        if (const CheckRecord* record = decoder_.decodeCheck(line)) history.append(*record);
    }

    SiteHistoryProjection history;

private:
    HistoryLineDecoder decoder_;
};

/// Folds the lines of a service's history into a projection.
class ProviderHistoryFold : public HistoryLineSink {
public:
    void take(std::string_view line) override {
        if (const ProviderCheckRecord* record = decoder_.decodeProviderCheck(line)) history.append(*record);
    }

    ProviderHistoryProjection history;

private:
    HistoryLineDecoder decoder_;
};

} // namespace

StateReader::StateReader(std::filesystem::path rootURL) : rootURL_(std::move(rootURL)) {}

HistoryFileRevision StateReader::historyRevision(HistoryKind kind, const std::string& id) const {
    return fileRevision(historyFilePath(rootURL_, kind, id), MissingFile::Allowed);
}

HistoryFileRevision StateReader::fileRevision(const std::filesystem::path& url, MissingFile missing) const {
    return kestrin::fileRevision(url, missing);
}

std::vector<SiteSnapshot> StateReader::loadSiteSnapshots(
    const std::vector<SiteDefinition>& sites, std::stop_token stop) const {
    std::vector<SiteSnapshot> snapshots;
    snapshots.reserve(sites.size());
    for (const SiteDefinition& site : sites) {
        SiteHistoryFold fold;
        const auto revision = scanHistoryLines(rootURL_, HistoryKind::Website, site.id, fold, stop);
        snapshots.push_back({.site = site, .history = std::move(fold.history), .historyRevision = revision});
    }
    return snapshots;
}

std::vector<ProviderSnapshot> StateReader::loadProviderSnapshots(
    const std::vector<ProviderDefinition>& providers, std::stop_token stop) const {
    std::vector<ProviderSnapshot> snapshots;
    snapshots.reserve(providers.size());
    for (const ProviderDefinition& provider : providers) {
        ProviderHistoryFold fold;
        const auto revision = scanHistoryLines(rootURL_, HistoryKind::Provider, provider.id, fold, stop);
        snapshots.push_back(
            {.provider = provider, .history = std::move(fold.history), .historyRevision = revision});
    }
    return snapshots;
}

} // namespace kestrin
