#include "faults/Disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

using namespace kestrin;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Key;
using testing::Not;
using testing::Pair;

namespace {

std::set<Tree> treesAfterLossOfPower(const Disk& disk) {
    std::set<Tree> trees;
    disk.forEachTreeAfterLossOfPower([&](const Tree& tree) { trees.insert(tree); });
    return trees;
}

const Tree former = {{"root", std::nullopt}, {"root/file", "old"}};

} // namespace

TEST(TheModelOfADisk, keepsWhatWasThereAtTheStart) {
    EXPECT_THAT(treesAfterLossOfPower(Disk(former)), ElementsAre(former));
}

TEST(TheModelOfADisk, mayHaveAnyPartOfBytesThatWereNotSynced) {
    Disk disk(former);
    disk.write(disk.at("root/file").value(), 3, "new!");
    const auto trees = treesAfterLossOfPower(disk);
    for (const std::string& content : {std::string("old"), std::string("oldnew!"), std::string("oldne"),
             std::string("old\0\0\0\0", 7), std::string("oldne\0\0", 7)})
        EXPECT_THAT(trees, Contains(Contains(Pair("root/file", content)))) << content;
    disk.sync(disk.at("root/file").value());
    EXPECT_THAT(treesAfterLossOfPower(disk), Each(Contains(Pair("root/file", "oldnew!"))));
}

TEST(TheModelOfADisk, mayLoseASyncedFileWhoseNameIsNot) {
    Disk disk(former);
    const Disk::Inode file = disk.createFile("root/new");
    disk.write(file, 0, "bytes");
    disk.sync(file);
    const auto trees = treesAfterLossOfPower(disk);
    EXPECT_THAT(trees, Contains(Not(Contains(Key("root/new")))));
    EXPECT_THAT(trees, Contains(Contains(Pair("root/new", "bytes"))));
    disk.sync(disk.at("root").value());
    EXPECT_THAT(treesAfterLossOfPower(disk), Each(Contains(Pair("root/new", "bytes"))));
}

TEST(TheModelOfADisk, mayHaveARenamedFileWithoutItsBytes) {
    Disk disk(former);
    disk.write(disk.createFile("root/temporary"), 0, "new");
    disk.rename("root/temporary", "root/file");
    disk.sync(disk.at("root").value());
    EXPECT_THAT(treesAfterLossOfPower(disk), Contains(Tree{{"root", std::nullopt}, {"root/file", ""}}));
}

TEST(TheModelOfADisk, renamesWhollyOrNotAtAll) {
    Disk disk(former);
    disk.rename("root/file", "root/other");
    EXPECT_THAT(
        treesAfterLossOfPower(disk), ElementsAre(former, Tree{{"root", std::nullopt}, {"root/other", "old"}}));
}

TEST(TheModelOfADisk, mayHaveTheLaterOfTwoNamesAlone) {
    Disk disk(former);
    disk.makeDirectory("root/first");
    disk.makeDirectory("root/second");
    EXPECT_THAT(treesAfterLossOfPower(disk),
        Contains(Tree{{"root", std::nullopt}, {"root/file", "old"}, {"root/second", std::nullopt}}));
}
