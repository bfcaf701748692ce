#pragma once

#include <string_view>

namespace kestrin {

/// True for a host that is refused from its text alone: a local name, or a numeric address that is not public.
/// Any other name passes unresolved; whoever resolves it puts every address to `isPublicAddress`.
[[nodiscard]] bool isBlockedHost(std::string_view host);

} // namespace kestrin
