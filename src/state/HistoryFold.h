#pragma once

#include "state/DeferredLines.h"
#include "state/HistoryLineDecoder.h"
#include "state/HistoryScanner.h"
#include "state/PlainLineRecognition.h"
#include "state/ProviderHistoryProjection.h"
#include "state/SiteHistoryProjection.h"

#include <cstddef>
#include <string_view>

namespace kestrin {

/// What the folds of both kinds of history do alike: it holds back as many lines as a projection keeps records, so
/// that a line is folded only when it is known how many follow. `Fold` says how a line is read and folded.
template <class Fold> class DeferringHistoryFold : public HistoryLineSink {
public:
    std::size_t takeWholeLines(std::string_view text) final;
    void take(std::string_view line) final;

private:
    friend Fold;
    explicit DeferringHistoryFold(PlainLineRecognition::Reading read) : recognition_(read) {}

    void defer(DeferredLines::Line line);
    void appendDeferred();

    HistoryLineDecoder decoder_;
    PlainLineRecognition recognition_;
    DeferredLines deferred_;
};

/// Folds the lines of a website's history into a projection, the same as appending every record that decodes. A
/// check that so many follow as are kept, and that neither opens nor closes an incident, only counts: so most of a
/// long history is never decoded.
class SiteHistoryFold : public DeferringHistoryFold<SiteHistoryFold> {
public:
    SiteHistoryFold() : DeferringHistoryFold(readPlainCheck) {}

    /// The projection of the lines taken; afterwards no more may be taken.
    [[nodiscard]] SiteHistoryProjection finish();

private:
    friend DeferringHistoryFold;
    static constexpr std::size_t keptRecords = SiteHistoryProjection::maximumRecentChecks;

    [[nodiscard]] CheckRecord* decode(std::string_view line) { return decoder_.decodeCheck(line); }
    static bool isUp(const CheckRecord& record) { return record.up; }
    /// Folds a line that enough others follow to push its record out of the recent ones.
    void pass(const DeferredLines::Line& line);

    SiteHistoryProjection history_;
};

/// Folds the lines of a service's history into a projection, of which only the last ones stay.
class ProviderHistoryFold : public DeferringHistoryFold<ProviderHistoryFold> {
public:
    ProviderHistoryFold() : DeferringHistoryFold(readPlainProviderCheck) {}

    [[nodiscard]] ProviderHistoryProjection finish();

private:
    friend DeferringHistoryFold;
    static constexpr std::size_t keptRecords = ProviderHistoryProjection::maximumRecentChecks;

    [[nodiscard]] ProviderCheckRecord* decode(std::string_view line) { return decoder_.decodeProviderCheck(line); }
    static bool isUp(const ProviderCheckRecord&) { return true; }
    static void pass(const DeferredLines::Line&) {}

    ProviderHistoryProjection history_;
};

} // namespace kestrin
