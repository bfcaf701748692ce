// history_writer FILE SITE-ID BYTES (recurring|distinct) [LONG-LINES KIND] - writes a history file as years of
// checks would leave it, the same bytes every time.
//
// recurring: one website with a few sets of addresses, as most are. distinct: every line has addresses of its own.
// LONG-LINES lines of nearly 8 MB are spread among the others, of KIND text (one long error) or values (an unknown
// field full of numbers).
#include "state/HistoryLine.h"
#include "state/HistoryScanner.h"
#include "text/Timestamp.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace kestrin;
using namespace std::chrono_literals;

/// Makes up one website's checks in the order of time.
class CheckStory {
public:
    CheckStory(std::string siteID, bool distinctAddresses)
        : url_("https://www." + siteID + ".example/"), distinct_(distinctAddresses) {
        next_.siteID = std::move(siteID);
        next_.url = url_;
        for (int set = 0; set < 3; ++set)
            addressSets_.push_back(addresses(2 + set));
    }

    const CheckRecord& tell() {
        next_.timestamp = timestampText(time_);
        time_ += 5min;
        if (failuresLeft_ == 0 && chance(400)) beginFailure();
        if (failuresLeft_ > 0)
            fail();
        else
            succeed();
        return next_;
    }

private:
    [[nodiscard]] std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }
    [[nodiscard]] bool chance(std::uint32_t one) { return below(one) == 0; }

    std::string shortAddress() {
        std::string address = "93";
        for (int part = 0; part < 3; ++part)
            address += '.' + std::to_string(below(256));
        return address;
    }

    std::string longAddress() {
        std::string address = "2606:2800";
        for (int part = 0; part < 6; ++part) {
            std::array<char, 8> digits{};
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), below(65536), 16);
            address.append(":").append(digits.data(), end.ptr);
        }
        return address;
    }

    std::vector<std::string> addresses(int count) {
        std::vector<std::string> found;
        for (int index = 0; index < count; ++index)
            found.push_back(index % 2 == 0 ? shortAddress() : longAddress());
        std::ranges::sort(found);
        return found;
    }

    void resolve() {
        if (distinct_)
            next_.ips = addresses(3);
        else if (next_.ips.empty() || chance(50))
            next_.ips = addressSets_[below(4) % 3]; // the first one twice as often as another
        next_.dnsOK = true;
    }

    void succeed() {
        resolve();
        next_.httpStatus = 200;
        next_.elapsedMS = 40 + below(400);
        next_.up = true;
        next_.error.reset();
    }

    void beginFailure() {
        failuresLeft_ = 1 + below(12);
        failure_ = below(3);
    }

    void fail() {
        --failuresLeft_;
        resolve();
        next_.up = false;
        next_.httpStatus.reset();
        next_.elapsedMS = 15'000 + below(40);
        if (failure_ == 0) {
            next_.httpStatus = 503;
            next_.elapsedMS = 40 + below(400);
            next_.error = "HTTP 503";
        } else if (failure_ == 1) {
            next_.error = "The request timed out.";
        } else {
            next_.dnsOK = false;
            next_.ips.clear();
            next_.error = "DNS: Temporary failure in name resolution";
        }
    }

    std::string url_;
    bool distinct_;
    std::mt19937_64 random_{20'260'101};
    std::chrono::sys_seconds time_{std::chrono::sys_days{std::chrono::year(2016) / 1 / 1}};
    std::vector<std::vector<std::string>> addressSets_;
    std::uint32_t failuresLeft_ = 0;
    std::uint32_t failure_ = 0;
    CheckRecord next_;
};

std::string longLine(CheckRecord record, std::string_view kind) {
    if (kind == "text") {
        record.error = std::string(maximumHistoryLineBytes - 1000, 'x');
        return historyLine(record);
    }
    std::string line = historyLine(record);
    line.pop_back();
    line += ",\"values\":[1";
    while (line.size() < maximumHistoryLineBytes - 1000)
        line += ",1";
    return line + "]}";
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() != 4 && arguments.size() != 6) {
        std::cerr << "usage: history_writer FILE SITE-ID BYTES (recurring|distinct) [LONG-LINES text|values]\n";
        return EXIT_FAILURE;
    }
    const std::uint64_t bytes = std::stoull(arguments[2]);
    const std::uint64_t longLines = arguments.size() == 6 ? std::stoull(arguments[4]) : 0;
    CheckStory story(arguments[1], arguments[3] == "distinct");
    std::ofstream file(arguments[0], std::ios::binary);
    std::uint64_t written = 0;
    for (std::uint64_t longWritten = 0; written < bytes || longWritten < longLines;) {
        std::string line = historyLine(story.tell()) + '\n';
        if (longWritten < longLines && written >= longWritten * (bytes / longLines)) {
            line += longLine(story.tell(), arguments[5]) + '\n';
            ++longWritten;
        }
        file << line;
        written += line.size();
    }
    file.close();
    if (file) return EXIT_SUCCESS;
    std::cerr << arguments[0] << " could not be written.\n";
    return EXIT_FAILURE;
}
