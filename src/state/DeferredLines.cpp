#include "state/DeferredLines.h"

#include "state/HistoryScanner.h"

#include <algorithm>

namespace kestrin {

void DeferredLines::keep() {
    for (std::size_t index = std::max(kept_, removed_); index < added_; ++index) {
        std::string_view& text = lines_[index % maximum].text;
        std::string& memory = memory_[index % maximum];
        memory = text;
        memory.append(historyLinePadding, '\0');
        text = {memory.data(), text.size()};
    }
    kept_ = added_;
}

} // namespace kestrin
