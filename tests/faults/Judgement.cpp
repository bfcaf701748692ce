#include "faults/Judgement.h"

#include <algorithm>
#include <string_view>

namespace kestrin {

namespace {

using Content = std::optional<std::string>;

bool lostPower(Ending ending) {
    return ending == Ending::PowerLost || ending == Ending::PowerLostAfterSuccess;
}

/// Only what nobody could clean up any more may leave a temporary.
bool mayLitter(Ending ending, Removal removal) {
    return ending == Ending::Killed || lostPower(ending) || removal == Removal::Failed;
}

/// Whether that is the former content with a part of the new behind it. Bytes that never reached the disk read as
/// zeros after a loss of power.
bool isTornAppend(const std::string& former, const std::string& whole, const std::string& now, bool zerosToo) {
    if (!now.starts_with(former) || now.size() > whole.size()) return false;
    for (std::size_t i = former.size(); i < now.size(); ++i)
        if (now[i] != whole[i] && !(zerosToo && now[i] == '\0')) return false;
    return true;
}

bool mayHold(const Operation& operation, const Content& now, Ending ending) {
    const Content former = operation.former();
    const Content whole = operation.after;
    const bool torn = now && isTornAppend(former.value_or(""), *whole, *now, lostPower(ending));
    switch (operation.effect) {
    case Effect::Reads:
        return now == former;
    case Effect::Replaces:
        if (ending == Ending::Succeeded || ending == Ending::PowerLostAfterSuccess) return now == whole;
        return now == former || now == whole;
    case Effect::Creates:
        if (ending == Ending::Succeeded) return now == whole;
        if (ending == Ending::Failed) return !now;
        if (ending == Ending::PowerLostAfterSuccess) return !now || now == whole;
        return !now || torn;
    case Effect::Begins:
        if (ending == Ending::Succeeded) return now == whole;
        if (lostPower(ending)) return !now || torn;
        return !now || now == whole;
    case Effect::Appends:
        return ending == Ending::Succeeded ? now == whole : torn;
    }
    return false;
}

Content contentIn(const Tree& tree, const std::string& path) {
    const auto found = tree.find(path);
    return found == tree.end() ? std::nullopt : found->second;
}

bool isTemporary(std::string_view path) {
    return path.substr(path.rfind('/') + 1).starts_with('.') && path.ends_with(".tmp");
}

/// A directory that holds anything but its configuration is refused by the next start.
bool locksTheNextStart(const Operation& operation, const Tree& tree, const std::string& path) {
    return path.starts_with(operation.root + "/") && !tree.contains(operation.root + "/sites.json");
}

std::string faultOfNewEntry(const Operation& operation, const Tree& tree, const std::string& path, bool mayLitter) {
    const Content& content = tree.at(path);
    if (locksTheNextStart(operation, tree, path)) return path + " locks the next start";
    if (!content) return {};
    if (isTemporary(path)) return mayLitter ? "" : path + " was left behind";
    const bool isBackup = path.starts_with(operation.root + "/backups/") && path.ends_with(".json");
    if (!isBackup || !operation.makesBackup) return path + " was not asked for";
    return content == operation.former() ? "" : path + " is not the whole former file";
}

bool hasBackup(const Operation& operation, const Tree& tree) {
    return std::ranges::any_of(tree, [&](const auto& entry) {
        return entry.first.starts_with(operation.root + "/backups/") && !isTemporary(entry.first) &&
               entry.second == operation.former();
    });
}

} // namespace

std::string fault(const Operation& operation, const Tree& tree, Ending ending, Removal removal) {
    const Content now = contentIn(tree, operation.file);
    if (!mayHold(operation, now, ending)) return operation.file + " is neither whole nor as it was";
    if (operation.makesBackup && now == operation.after && !hasBackup(operation, tree))
        return "the former file is gone and there is no backup of it";
    for (const auto& [path, content] : operation.before)
        if (path != operation.file && (!tree.contains(path) || tree.at(path) != content))
            return path + " was changed";
    for (const auto& [path, content] : tree) {
        if (path == operation.file || operation.before.contains(path)) continue;
        const std::string wrong = faultOfNewEntry(operation, tree, path, mayLitter(ending, removal));
        if (!wrong.empty()) return wrong;
    }
    return {};
}

} // namespace kestrin
