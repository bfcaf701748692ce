#pragma once

namespace kestrin {

/// What a path names, without following a link. Devices, sockets and FIFOs are `other`.
enum class StateFileKind { missing, directory, regularFile, symbolicLink, other };

} // namespace kestrin
