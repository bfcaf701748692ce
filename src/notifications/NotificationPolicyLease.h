#pragma once

#include <mutex>

namespace kestrin {

/// Says whether the configuration under which work began is still the current one. The monitor invalidates it and
/// makes another at every reload; one that is invalid stays so. Shared between threads; its lock is held for one
/// read or one write and nothing else.
class NotificationPolicyLease {
public:
    [[nodiscard]] bool isValid() const {
        const std::lock_guard guard(lock_);
        return valid_;
    }

    void invalidate() {
        const std::lock_guard guard(lock_);
        valid_ = false;
    }

private:
    mutable std::mutex lock_;
    bool valid_ = true;
};

} // namespace kestrin
