#pragma once

#include "model/HistoryFileRevision.h"

namespace kestrin {

/// A history file before and after a line was added to it. `before` is all zeros when the file came into being. Its
/// size is what stands in front of the added bytes, so that it also shows what another program added while this one
/// was writing: whoever knew the file up to `before` knows it up to `after`, and nobody else does.
struct HistoryAppend {
    HistoryFileRevision before;
    HistoryFileRevision after;

    bool operator==(const HistoryAppend&) const = default;
};

} // namespace kestrin
