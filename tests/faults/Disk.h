#pragma once

#include "faults/Tree.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

/// A disk as distrustful software sees it. The bytes of a file are on it once that file was synced, a name once the
/// directory that holds it was. Until then any part of what was done may have reached the disk, in any order; only
/// a change of names by one call is whole or not at all. Paths are relative, without "." and "..".
class Disk {
public:
    using Inode = std::size_t;

    /// Everything in the tree is on the disk.
    explicit Disk(const Tree& tree);

    /// No value where there is nothing of that name; the empty path is the top directory.
    [[nodiscard]] std::optional<Inode> at(const std::string& path) const;
    [[nodiscard]] std::size_t sizeOf(Inode file) const;

    [[nodiscard]] Inode createNamelessFile();
    Inode createFile(const std::string& path);
    void makeDirectory(const std::string& path);
    void link(Inode file, const std::string& path);
    void rename(const std::string& from, const std::string& to);
    void remove(const std::string& path);
    void write(Inode file, std::size_t offset, const std::string& bytes);
    void sync(Inode inode);

    /// Calls back with every tree that a loss of power now may leave, some of them more than once.
    void forEachTreeAfterLossOfPower(const std::function<void(const Tree&)>& callback) const;

private:
    /// A name in a directory, and what it stands for from then on.
    struct NameChange {
        Inode directory = 0;
        std::string name;
        std::optional<Inode> inode;
    };
    struct Change {
        std::vector<NameChange> names; ///< all at once; the last one is the name that appears
        Inode file = 0;                ///< of a change without names, which is one of bytes
        std::size_t offset = 0;
        std::string bytes;
        bool isOnDisk = false;
    };
    struct State {
        std::map<Inode, std::map<std::string, Inode>> directories;
        std::map<Inode, std::string> files;
    };

    [[nodiscard]] NameChange nameAt(const std::string& path, std::optional<Inode> inode) const;
    void change(Change change);
    static void apply(State& state, const Change& change, std::size_t way);
    static std::size_t waysOf(const Change& change);
    static void addTo(Tree& tree, const State& state, Inode directory, const std::string& prefix);

    State before_; ///< what was on the disk at the start
    State now_;    ///< what programs see
    std::vector<Change> changes_;
    Inode nextInode_ = 1;
};

} // namespace kestrin
