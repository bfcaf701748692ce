#include "faults/Disk.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace kestrin {

namespace {

constexpr Disk::Inode top = 0;
constexpr std::size_t maximumStates = 2'000'000;

/// What may be there of bytes that were written and not synced: a part, and zeros for the rest of another part.
struct Part {
    double written;
    double size;
};
constexpr std::array parts = {Part{0, 0}, Part{1, 1}, Part{0.5, 0.5}, Part{0, 1}, Part{0.5, 1}, Part{0, 0.5}};

std::string partOf(const std::string& bytes, const Part& part) {
    const auto share = [&](double of) { return static_cast<std::size_t>(static_cast<double>(bytes.size()) * of); };
    std::string there = bytes.substr(0, share(part.written));
    there.resize(std::max(there.size(), share(part.size)), '\0');
    return there;
}

} // namespace

Disk::Disk(const Tree& tree) {
    now_.directories[top] = {};
    for (const auto& [path, content] : tree) {
        // A tree names directories only where they are empty or stand for themselves.
        for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1))
            if (!at(path.substr(0, slash))) makeDirectory(path.substr(0, slash));
        if (content)
            write(createFile(path), 0, *content);
        else if (!at(path))
            makeDirectory(path);
    }
    changes_.clear();
    before_ = now_;
}

std::optional<Disk::Inode> Disk::at(const std::string& path) const {
    Inode inode = top;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const auto directory = now_.directories.find(inode);
        if (directory == now_.directories.end()) return std::nullopt;
        const auto entry = directory->second.find(path.substr(begin, end - begin));
        if (entry == directory->second.end()) return std::nullopt;
        inode = entry->second;
        begin = end + 1;
    }
    return inode;
}

std::size_t Disk::sizeOf(Inode file) const {
    return now_.files.at(file).size();
}

Disk::Inode Disk::createNamelessFile() {
    now_.files[nextInode_] = {};
    return nextInode_++;
}

Disk::Inode Disk::createFile(const std::string& path) {
    const Inode file = createNamelessFile();
    link(file, path);
    return file;
}

void Disk::makeDirectory(const std::string& path) {
    now_.directories[nextInode_] = {};
    change({.names = {nameAt(path, nextInode_)}, .bytes = {}});
    ++nextInode_;
}

void Disk::link(Inode file, const std::string& path) {
    change({.names = {nameAt(path, file)}, .bytes = {}});
}

void Disk::rename(const std::string& from, const std::string& to) {
    change({.names = {nameAt(from, std::nullopt), nameAt(to, at(from).value())}, .bytes = {}});
}

void Disk::remove(const std::string& path) {
    change({.names = {nameAt(path, std::nullopt)}, .bytes = {}});
}

void Disk::write(Inode file, std::size_t offset, const std::string& bytes) {
    change({.names = {}, .file = file, .offset = offset, .bytes = bytes});
}

void Disk::sync(Inode inode) {
    const bool isDirectory = now_.directories.contains(inode);
    for (Change& change : changes_) {
        if (isDirectory && !change.names.empty() && change.names.back().directory == inode) change.isOnDisk = true;
        if (!isDirectory && change.names.empty() && change.file == inode) change.isOnDisk = true;
    }
}

Disk::NameChange Disk::nameAt(const std::string& path, std::optional<Inode> inode) const {
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : path.substr(0, slash);
    return {.directory = at(directory).value(), .name = path.substr(slash + 1), .inode = inode};
}

void Disk::change(Change change) {
    apply(now_, change, 1);
    changes_.push_back(std::move(change));
}

std::size_t Disk::waysOf(const Change& change) {
    return change.names.empty() ? parts.size() : 2;
}

/// Way 0 is not at all and way 1 is wholly, for either kind of change.
void Disk::apply(State& state, const Change& change, std::size_t way) {
    if (way == 0) return;
    for (const NameChange& name : change.names) {
        if (name.inode)
            state.directories[name.directory][name.name] = *name.inode;
        else
            state.directories[name.directory].erase(name.name);
    }
    if (!change.names.empty()) return;
    const std::string bytes = partOf(change.bytes, parts.at(way));
    std::string& content = state.files[change.file];
    content.resize(std::max(content.size(), change.offset + bytes.size()), '\0');
    content.replace(change.offset, bytes.size(), bytes);
}

void Disk::addTo(Tree& tree, const State& state, Inode directory, const std::string& prefix) {
    const auto entries = state.directories.find(directory);
    if (entries == state.directories.end()) return;
    for (const auto& [name, inode] : entries->second) {
        const auto file = state.files.find(inode);
        tree[prefix + name] = file == state.files.end() ? std::nullopt : std::optional(file->second);
        addTo(tree, state, inode, prefix + name + "/");
    }
}

void Disk::forEachTreeAfterLossOfPower(const std::function<void(const Tree&)>& callback) const {
    // The ways of all pending changes are the digits of a number that is counted through.
    std::vector<std::size_t> ways(changes_.size(), 1);
    for (std::size_t i = 0; i < ways.size(); ++i)
        if (!changes_[i].isOnDisk) ways[i] = 0;
    for (std::size_t count = 0;; ++count) {
        if (count == maximumStates) throw std::runtime_error("too many changes are pending to try every state");
        State state = before_;
        for (const auto& [inode, content] : now_.files)
            state.files.try_emplace(inode);
        for (std::size_t i = 0; i < changes_.size(); ++i)
            apply(state, changes_[i], ways[i]);
        Tree tree;
        addTo(tree, state, top, "");
        callback(tree);

        std::size_t digit = 0;
        for (; digit < ways.size(); ++digit) {
            if (changes_[digit].isOnDisk) continue;
            if (++ways[digit] < waysOf(changes_[digit])) break;
            ways[digit] = 0;
        }
        if (digit == ways.size()) return;
    }
}

} // namespace kestrin
