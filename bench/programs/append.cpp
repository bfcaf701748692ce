// append (check|calls|six) ROOT COUNT - appends COUNT checks to one history of ROOT and prints what one took:
// "WALL CPU" in microseconds.
//
// check: as the program does. calls: the same system calls with the same arguments and nothing else. six: open,
// read a byte, write, fstat, close alone, without those that guard the path.
#include "CPUTime.h"
#include "state/HistoryLine.h"
#include "state/StateWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

using namespace kestrin;
using bench::cpuTime;
using bench::Microseconds;

CheckRecord record() {
    return {"2026-01-31T09:05:00Z", "site-1", "https://www.site-1.example/status?from=here", true,
        {"2606:2800:21f:cb07:6820:80da:af6b:1946", "93.184.215.14", "93.184.216.34"}, 200, 143, true, std::nullopt};
}

void require(bool held) {
    if (!held) throw std::runtime_error("A system call failed.");
}

void lookAt(const std::string& path) {
    struct stat status{};
    require(::lstat(path.c_str(), &status) == 0);
}

struct Calls {
    std::string root;
    std::string data = root + "/data";
    std::string file = data + "/site-1.jsonl";
    std::string line = historyLine(record()) + '\n';

    /// As the program asks what it is about to append to, with all that is asked again right before the use.
    void guardPath() const {
        for (const std::string* path : {&root, &data, &file, &file, &root, &data, &file, &file})
            lookAt(*path);
    }

    void extendFile() const {
        const int descriptor = ::open(file.c_str(), O_RDWR | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
        struct stat status{};
        require(descriptor >= 0 && ::fstat(descriptor, &status) == 0);
        char last = 0;
        require(::pread(descriptor, &last, 1, status.st_size - 1) == 1 && last == '\n');
        require(::write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size()));
        require(::fstat(descriptor, &status) == 0);
        require(::close(descriptor) == 0);
    }
};

void measure(int count, const std::function<void()>& append) {
    append(); // the first one creates the file or finds it in no cache
    const auto cpuBefore = cpuTime();
    const auto before = std::chrono::steady_clock::now();
    for (int index = 0; index < count; ++index)
        append();
    const Microseconds wall = std::chrono::steady_clock::now() - before;
    std::cout << wall.count() / count << " " << (cpuTime() - cpuBefore).count() / count << "\n";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: append (check|calls|six) ROOT COUNT\n";
        return EXIT_FAILURE;
    }
    const std::string what = argv[1];
    const int count = std::atoi(argv[3]);
    try {
        StateWriter writer(argv[2]);
        const CheckRecord check = record();
        const Calls calls{argv[2]};
        if (what == "check")
            measure(count, [&] { writer.appendCheck(check); });
        else if (what == "calls")
            measure(count, [&] { calls.guardPath(), calls.extendFile(); });
        else
            measure(count, [&] { calls.extendFile(); });
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << "\n";
        return EXIT_FAILURE;
    }
}
