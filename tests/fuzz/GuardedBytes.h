#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace kestrin {

/// A text, and a fixed number of readable bytes behind it, at the very end of the readable memory: one byte further
/// and the program ends. Finds what a library reads too far that was built without a sanitizer.
class GuardedBytes {
public:
    /// Texts of up to `capacity` bytes, padding included.
    explicit GuardedBytes(std::size_t capacity) {
        const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        readable_ = (capacity + page - 1) / page * page;
        void* const memory =
            ::mmap(nullptr, readable_ + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::runtime_error("no memory");
        bytes_ = static_cast<char*>(memory);
        if (::mprotect(bytes_ + readable_, page, PROT_NONE) != 0) throw std::runtime_error("no guard page");
        mapped_ = readable_ + page;
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    ~GuardedBytes() { ::munmap(bytes_, mapped_); }

    /// The text where it now lies, until the next call. It must fit.
    std::string_view place(std::string_view text, std::size_t padding) {
        char* const begin = bytes_ + readable_ - padding - text.size();
        std::memcpy(begin, text.data(), text.size());
        // What lies behind a text means nothing; brackets would show if it did.
        std::memset(begin + text.size(), '}', padding);
        return {begin, text.size()};
    }

private:
    char* bytes_ = nullptr;
    std::size_t readable_ = 0;
    std::size_t mapped_ = 0;
};

} // namespace kestrin
