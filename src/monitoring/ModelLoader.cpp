#include "monitoring/ModelLoader.h"

#include "tasks/CancellationError.h"

#include <exception>
#include <utility>

namespace kestrin {

namespace {

void refuseIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) throw CancellationError();
}

} // namespace

ModelLoader::ModelLoader(StateReader reader, std::shared_ptr<const CustomProviderReading> customProviders,
    std::shared_ptr<const ServiceDirectory> services)
    : reader_(std::move(reader)), customProviders_(std::move(customProviders)), services_(std::move(services)) {}

AppModelLoadResult ModelLoader::load(const KnownHistories& known, const std::stop_token& stop) const {
    try {
        try {
            return attempt(known, stop);
        } catch (const AppModelStateLoadError&) {
            return attempt(known, stop);
        }
    } catch (const CancellationError&) {
        return LoadFailed::byCancellation();
    } catch (const std::exception& error) {
        return LoadFailed{error.what()};
    }
}

AppModelLoadResult ModelLoader::attempt(const KnownHistories& known, const std::stop_token& stop) const {
    refuseIfStopped(stop);
    const HistoryFileRevision configurationBefore = configurationRevision();
    const HistoryFileRevision customProvidersBefore = customProviders_->revision();

    const ConfigurationLoadResult read = reader_.loadConfiguration();
    if (!read.isConfigured()) {
        const HistoryFileRevision configurationAfter = configurationRevision();
        if (configurationAfter != configurationBefore) throw AppModelStateLoadError();
        return LoadedNotConfigured{configurationAfter};
    }

    LoadedConfigured loaded;
    loaded.configuration = read.configuration();
    try {
        loaded.customProviderConfiguration = customProviders_->load().value_or(CustomProviderConfiguration());
    } catch (const std::exception& error) {
        loaded.customProviderIssue = std::string("Could not read additional status services: ") + error.what();
    }
    loaded.snapshots = reader_.loadSiteSnapshots(loaded.configuration.sites, known.sites, stop);
    const ProviderStatusConfiguration& status = loaded.configuration.providerStatus;
    if (status.enabled)
        loaded.providerSnapshots = reader_.loadProviderSnapshots(
            servicesOfRun(*services_, status.providerIDs, loaded.customProviderConfiguration), known.services,
            stop);

    loaded.configurationRevision = configurationRevision();
    loaded.customProviderRevision = customProviders_->revision();
    if (loaded.configurationRevision != configurationBefore ||
        loaded.customProviderRevision != customProvidersBefore)
        throw AppModelStateLoadError();
    return loaded;
}

// A state directory that is missing and one without the file are the same to whoever compares.
HistoryFileRevision ModelLoader::configurationRevision() const {
    return reader_.configurationRevision().value_or(HistoryFileRevision());
}

bool ModelLoader::revisionsMatch(const ExpectedStateRevisions& expected, const std::stop_token& stop) const {
    const auto historiesMatch = [&](HistoryKind kind, const std::map<std::string, HistoryFileRevision>& revisions) {
        for (const auto& [id, revision] : revisions) {
            refuseIfStopped(stop);
            if (reader_.historyRevision(kind, id) != revision) return false;
        }
        return true;
    };
    try {
        return configurationRevision() == expected.configuration &&
               customProviders_->revision() == expected.customProviders &&
               historiesMatch(HistoryKind::Website, expected.websites) &&
               historiesMatch(HistoryKind::Provider, expected.providers);
    } catch (const std::exception&) {
        // What cannot be looked at is not what the model knows; the reload that follows tells the user.
        return false;
    }
}

} // namespace kestrin
