// Another program adds a line to a history while this one does, between two of its system calls.

#include "fakes/TemporaryDirectory.h"
#include "state/FileRevision.h"
#include "state/HistoryAppending.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <utility>

namespace {

/// Called once, before the next of the calls that are linked to what stands below.
std::function<bool()> meanwhile;

void letOthersAct() {
    if (!meanwhile) return;
    const auto act = std::exchange(meanwhile, nullptr);
    if (!act()) meanwhile = act;
}

} // namespace

extern "C" {
int __real_lstat(const char* path, struct stat* status);
int __wrap_lstat(const char* path, struct stat* status);
ssize_t __real_write(int descriptor, const void* bytes, size_t count);
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count);
}

int __wrap_lstat(const char* path, struct stat* status) {
    letOthersAct();
    return __real_lstat(path, status);
}

ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
    letOthersAct();
    return __real_write(descriptor, bytes, count);
}

namespace kestrin {
namespace {

class AForeignLine : public testing::Test {
protected:
    AForeignLine() { root.write("sites.json", "{}"); }

    HistoryAppend append() const {
        HistoryAppend append = appendHistoryLine(root.path(), HistoryKind::Website, "site-1", "ours");
        meanwhile = nullptr;
        return append;
    }

    /// As soon as the file is there.
    void addForeignLineMeanwhile() const {
        meanwhile = [this] {
            if (!std::filesystem::exists(file)) return false;
            std::ofstream(file, std::ios::app) << "theirs\n";
            return true;
        };
    }

    const TemporaryDirectory root;
    const std::filesystem::path file = root / "data/site-1.jsonl";
};

TEST_F(AForeignLine, isNoticedByTheAppendThatItCameInto) {
    const HistoryAppend first = append();
    addForeignLineMeanwhile();
    const HistoryAppend second = append();
    ASSERT_EQ(TemporaryDirectory::contentOf(file), "ours\ntheirs\nours\n");
    EXPECT_NE(second.before, first.after);
    EXPECT_EQ(second.after, fileRevision(file, MissingFile::Refused));
}

TEST_F(AForeignLine, isNoticedByTheAppendThatBeganTheFile) {
    addForeignLineMeanwhile();
    const HistoryAppend begun = append();
    ASSERT_EQ(TemporaryDirectory::contentOf(file), "ours\ntheirs\n");
    EXPECT_NE(begun.before, HistoryFileRevision());
    EXPECT_EQ(begun.after, fileRevision(file, MissingFile::Refused));
}

} // namespace
} // namespace kestrin
