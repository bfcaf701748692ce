#include "state/WriteAll.h"

#include "state/StateErrors.h"

#include <unistd.h>

#include <cerrno>
#include <string>

namespace kestrin {

void writeAll(std::string_view data, int descriptor, std::string_view message) {
    while (!data.empty()) {
        const ssize_t count = ::write(descriptor, data.data(), data.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throwPOSIXError();
        if (count == 0) throw AtomicStateFileError(std::string(message));
        data.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace kestrin
