#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

/// Makes lines of a history file that are nearly, but mostly not quite, what Kestrin writes. The same each time.
class HistoryLineMutations {
public:
    explicit HistoryLineMutations(unsigned seed) : random_(seed) {}

    /// Every line that differs from this one by one byte of `bytes()` put over, put before or taken away, and every
    /// beginning of it.
    [[nodiscard]] static std::vector<std::string> ofEveryByte(const std::string& line) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < line.size(); ++at) {
            lines.push_back(line.substr(0, at));
            lines.push_back(std::string(line).erase(at, 1));
            for (const char byte : bytes()) {
                lines.push_back(line);
                lines.back()[at] = byte;
                lines.push_back(std::string(line).insert(at, 1, byte));
            }
        }
        return lines;
    }

    /// Every line in which a value, element or member is replaced by one of `texts()`, and every line in which one
    /// of these is put before it.
    [[nodiscard]] static std::vector<std::string> ofEveryPart(const std::string& line) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (line[at] != ':' && line[at] != ',' && line[at] != '{') continue;
            const std::size_t end = line.find_first_of(",}]", at + 1);
            for (const std::string_view text : texts()) {
                lines.push_back(line.substr(0, at + 1) + std::string(text) + line.substr(end));
                lines.push_back(line.substr(0, at + 1) + std::string(text) + "," + line.substr(at + 1));
            }
        }
        return lines;
    }

    /// The line with its digits mixed and up to three further changes anywhere.
    [[nodiscard]] std::string any(const std::string& line) {
        std::string changed = line;
        for (char& letter : changed)
            if (letter >= '0' && letter <= '9' && below(4) == 0) letter = static_cast<char>('0' + below(10));
        for (std::size_t count = below(4); count > 0; --count) {
            const std::size_t at = below(changed.size() + 1);
            switch (below(6)) {
            case 0:
                changed.insert(at, 1, bytes()[below(bytes().size())]);
                break;
            case 1:
                changed.insert(at, texts()[below(texts().size())]);
                break;
            case 2:
                changed.erase(at, 1 + below(3));
                break;
            case 3:
                swapMembers(changed);
                break;
            case 4:
                replaceNumber(changed);
                break;
            default:
                if (at < changed.size()) changed[at] = bytes()[below(bytes().size())];
            }
        }
        return changed;
    }

    [[nodiscard]] std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

private:
    static std::string_view bytes() { return {"09az\"\\,:{}[] -+.eET/\r\n\t\0\x01\x1F\x7F\x80\xC3\xED\xFF", 30}; }

    static const std::vector<std::string_view>& texts() {
        static const std::vector<std::string_view> all = {"", "0", "00", "01", "-0", "-1", "1.0", "1e3", "1E+3",
            " 1", "1 ", "\t1", "0x1", "999999999999999999", "1000000000000000000", "9223372036854775807",
            "9223372036854775808", "-9223372036854775808", "-9223372036854775809", "18446744073709551616", "1e999",
            "123456789012345678901234567890", "null", "true", "false", "nul", "\"\"", "\"1\"", "[]", "[\"a\"]",
            "[\"a\",]", "{}", "\"\\u0041\"", "\"\\ud800\"", "\"\\ud83d\\ude00\"", "\"\xC3\xA4\"", "\"\xC3\"",
            "\"\xED\xA0\x80\"", "\"up\"", "\"up\":true", "\"up\":false", "\"elapsed_ms\":1", "\"elapsed_ms\":-1",
            "\"elapsed_\\u006ds\":2", "\"timestamp\":\"2020-01-01T00:00:00Z\"", "\"site_id\":\"b\"", "\"x\":1",
            "\"x\":{\"up\":true,\"elapsed_ms\":3}", "\"http_status\":1.5", "\"ips\":[\"1\",2]",
            "\"state\":\"down\"", "\"state\":\"outage\"", "\"failure_category\":\"malformed\"",
            "\"failure_category\":\"none\"", "\"official_updated_at\":null", "/**/", "}", "]", "\",\"",
            "\"elapsed_ms\":"};
        return all;
    }

    /// Two members change places, cut at commas, so that also halves of lists do.
    void swapMembers(std::string& line) {
        std::vector<std::size_t> commas;
        for (std::size_t at = 0; at < line.size(); ++at)
            if (line[at] == ',') commas.push_back(at);
        if (commas.size() < 3) return;
        const std::size_t i = below(commas.size() - 2);
        const std::string first = line.substr(commas[i], commas[i + 1] - commas[i]);
        const std::string second = line.substr(commas[i + 1], commas[i + 2] - commas[i + 1]);
        line.replace(commas[i], first.size() + second.size(), second + first);
    }

    void replaceNumber(std::string& line) {
        constexpr std::string_view key = "\"elapsed_ms\":";
        const std::size_t at = line.find(key);
        if (at == std::string::npos) return;
        const std::size_t begin = at + key.size();
        const std::size_t end = line.find_first_not_of("0123456789", begin);
        if (end == std::string::npos) return;
        const std::string digits(1 + below(20), static_cast<char>('0' + below(10)));
        line.replace(begin, end - begin, below(3) == 0 ? std::string(texts()[below(texts().size())]) : digits);
    }

    std::mt19937 random_;
};

} // namespace kestrin
