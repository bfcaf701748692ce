#pragma once

namespace kestrin {

/// The colours that tell states apart. A state always has a word or a silhouette beside its colour.
enum class StateColor { secondary, green, orange, red, blue };

} // namespace kestrin
