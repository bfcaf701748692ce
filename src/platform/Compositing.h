#pragma once

namespace kestrin {

/// Whether the desktop draws windows that are partly transparent. On X11 a compositing manager has to run for that;
/// elsewhere it is not asked, since there only ordinary windows are opened. Main thread.
[[nodiscard]] bool windowsMayBeTransparent();

} // namespace kestrin
