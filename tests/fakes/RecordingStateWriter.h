#pragma once

#include "model/MessageError.h"
#include "state/StateWriting.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrin {

/// Hands everything on to a real writer and remembers it; fails where the test says so, and then writes nothing.
class RecordingStateWriter : public StateWriting {
public:
    explicit RecordingStateWriter(StateWriting& real) : real_(real) {}

    /// What reached the disk, in order: "website site-1 2026-01-01T00:00:01Z", "service openai ...".
    std::vector<std::string> appended;
    std::vector<SiteConfiguration> saved;
    std::optional<std::string> saveFailure;
    /// Called with the time stamp of each record that reached the disk.
    std::function<void(const std::string& timestamp)> onAppend;

    /// The n-th append from now fails, once; 1 is the next.
    void failAppend(std::size_t n, std::string message) {
        failingIn_ = n;
        appendFailure_ = std::move(message);
    }

    HistoryAppend appendCheck(const CheckRecord& record) override {
        failWhenDue();
        const HistoryAppend append = real_.appendCheck(record);
        appended.push_back("website " + record.siteID + " " + record.timestamp);
        if (onAppend) onAppend(record.timestamp);
        return append;
    }

    HistoryAppend appendProviderCheck(const ProviderCheckRecord& record) override {
        failWhenDue();
        const HistoryAppend append = real_.appendProviderCheck(record);
        appended.push_back("service " + record.providerID + " " + record.timestamp);
        if (onAppend) onAppend(record.timestamp);
        return append;
    }

    std::optional<std::filesystem::path> saveConfiguration(
        const SiteConfiguration& configuration, Backup backup) override {
        if (saveFailure) throw MessageError(*saveFailure);
        saved.push_back(configuration);
        return real_.saveConfiguration(configuration, backup);
    }

private:
    void failWhenDue() {
        if (failingIn_ == 0 || --failingIn_ > 0) return;
        throw MessageError(appendFailure_);
    }

    StateWriting& real_;
    std::size_t failingIn_ = 0;
    std::string appendFailure_;
};

} // namespace kestrin
