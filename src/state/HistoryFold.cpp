#include "state/HistoryFold.h"

#include <utility>

namespace kestrin {

template <class Fold> std::size_t DeferringHistoryFold<Fold>::takeWholeLines(std::string_view text) {
    if (recognition_.rests()) return 0;
    std::size_t bytes = 0;
    std::size_t lines = 0;
    while (bytes < text.size()) {
        const auto match = recognition_.recognise(text.substr(bytes));
        if (match.lineBytes == 0) {
            recognition_.count(lines);
            break;
        }
        defer({text.substr(bytes, match.lineBytes), match.up});
        bytes += match.lineBytes + sizeof '\n';
        ++lines;
    }
    deferred_.keep();
    return bytes;
}

template <class Fold> void DeferringHistoryFold<Fold>::take(std::string_view line) {
    auto& fold = static_cast<Fold&>(*this);
    const bool tooLongToDefer = line.size() > PlainHistoryLine::maximumBytes;
    if (tooLongToDefer) appendDeferred();
    auto* record = fold.decode(line);
    if (record == nullptr) return;
    if (tooLongToDefer) {
        fold.history_.append(std::move(*record));
    } else {
        defer({line, Fold::isUp(*record)});
        deferred_.keep();
    }
}

template <class Fold> void DeferringHistoryFold<Fold>::defer(DeferredLines::Line line) {
    static_assert(Fold::keptRecords <= DeferredLines::maximum);
    if (deferred_.count() == Fold::keptRecords) {
        static_cast<Fold*>(this)->pass(deferred_.oldest());
        deferred_.removeOldest();
    }
    deferred_.add(line);
}

template <class Fold> void DeferringHistoryFold<Fold>::appendDeferred() {
    auto& fold = static_cast<Fold&>(*this);
    for (; deferred_.count() > 0; deferred_.removeOldest())
        if (const auto* record = fold.decode(deferred_.oldest().text)) fold.history_.append(*record);
}

template class DeferringHistoryFold<SiteHistoryFold>;
template class DeferringHistoryFold<ProviderHistoryFold>;

void SiteHistoryFold::pass(const DeferredLines::Line& line) {
    const bool incident = history_.ongoingIncidentStart.has_value();
    if (line.up == incident) {
        // It opens or closes an incident, which takes its record.
        if (const CheckRecord* record = decode(line.text)) history_.append(*record);
        return;
    }
    ++history_.totalCheckCount;
    if (line.up) ++history_.successfulCheckCount;
}

SiteHistoryProjection SiteHistoryFold::finish() {
    appendDeferred();
    return std::move(history_);
}

ProviderHistoryProjection ProviderHistoryFold::finish() {
    appendDeferred();
    return std::move(history_);
}

} // namespace kestrin
