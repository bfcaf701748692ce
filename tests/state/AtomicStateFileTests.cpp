#include "state/AtomicStateFile.h"

#include "fakes/TemporaryDirectory.h"
#include "state/AsAnotherUser.h"
#include "state/ThrownMessage.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>

using namespace kestrin;
namespace fs = std::filesystem;

namespace {

constexpr const char* refused = "Refused.";

std::string readRefusal(const fs::path& path, std::int64_t limit = 100) {
    return thrownMessage<AtomicStateFileError>(
        [&] { static_cast<void>(AtomicStateFile::readBounded(path, limit, refused)); });
}

} // namespace

TEST(ClassifyingAPath, tellsEveryKindWithoutFollowingALink) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    fs::create_symlink("file", directory / "link");
    fs::create_symlink("nowhere", directory / "dangling");
    fs::create_directory(directory / "folder");
    fs::create_directory_symlink("folder", directory / "folderLink");
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "file"), StateFileKind::regularFile);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "link"), StateFileKind::symbolicLink);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "dangling"), StateFileKind::symbolicLink);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "folder"), StateFileKind::directory);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "folderLink"), StateFileKind::symbolicLink);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "fifo"), StateFileKind::other);
    EXPECT_EQ(AtomicStateFile::fileKind("/dev/null"), StateFileKind::other);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "missing"), StateFileKind::missing);
}

TEST(SyncingADirectory, isDoneWhereTheFileSystemFlushesNone) {
    const int processes = ::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_NE(::fsync(processes), 0) << "another file system has to serve";
    ASSERT_EQ(errno, EINVAL);
    ::close(processes);
    EXPECT_NO_THROW(AtomicStateFile::syncDirectory("/proc"));
}

TEST(ClassifyingAPath, callsASocketOther) {
    const TemporaryDirectory directory;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    (directory / "socket").string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "socket"), StateFileKind::other);
    ::close(descriptor);
}

TEST(ClassifyingAPath, standardisesThePathByItsLettersAlone) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    fs::create_directory_symlink("folder", directory / "link");
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "link/"), StateFileKind::symbolicLink);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "link/."), StateFileKind::symbolicLink);
    EXPECT_EQ(AtomicStateFile::fileKind(directory / "missing/../folder//"), StateFileKind::directory);
    EXPECT_EQ(AtomicStateFile::fileKind("/"), StateFileKind::directory);
}

TEST(ClassifyingAPath, passesOnAnyOtherFailure) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    EXPECT_EQ(
        thrownMessage<POSIXError>([&] { static_cast<void>(AtomicStateFile::fileKind(directory / "file/below")); }),
        "Not a directory");
    EXPECT_EQ(thrownMessage<POSIXError>(
                  [&] { static_cast<void>(AtomicStateFile::fileKind(directory / std::string(300, 'a'))); }),
        "File name too long");
}

TEST(AnErrorOfTheSystem, isTheEnglishSentenceAndItsCode) {
    EXPECT_EQ(POSIXError(ENOSPC).message, "No space left on device");
    EXPECT_EQ(POSIXError(ENOSPC).code, ENOSPC);
    EXPECT_EQ(POSIXError(EACCES).message, "Permission denied");
}

TEST(AnErrorOfTheSystem, becomesEIOForANumberThatIsNone) {
    EXPECT_EQ(POSIXError(99999).code, EIO);
    EXPECT_EQ(POSIXError(-1).code, EIO);
    EXPECT_EQ(POSIXError(99999).message, "Input/output error");
}

TEST(ReadingWithALimit, readsAFileOfExactlyTheLimitAndRefusesOneByteMore) {
    const TemporaryDirectory directory;
    for (const std::int64_t limit : {0, 1, 100, 16'383, 16'384, 16'385, 65'536}) {
        const std::string content(static_cast<std::size_t>(limit), 'x');
        const fs::path file = directory.write("file", content);
        EXPECT_EQ(AtomicStateFile::readBounded(file, limit, refused), content) << limit;
        directory.write("file", content + "x");
        EXPECT_EQ(readRefusal(file, limit), refused) << limit;
    }
}

TEST(ReadingWithALimit, keepsEveryByte) {
    const TemporaryDirectory directory;
    std::string content;
    for (int i = 0; i < 40'000; ++i)
        content += static_cast<char>(i * 7);
    EXPECT_EQ(AtomicStateFile::readBounded(directory.write("file", content), 40'000, refused), content);
}

TEST(ReadingWithALimit, refusesAFileThatGrowsWhileItIsRead) {
    // The kernel says that these files have no bytes, and then gives some.
    EXPECT_GT(AtomicStateFile::readBounded("/proc/self/status", 100'000, refused).size(), 0u);
    EXPECT_EQ(readRefusal("/proc/self/status", 10), refused);
}

TEST(ReadingWithALimit, refusesWhatIsNoRegularFileAndNeverWaits) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(readRefusal(directory / "fifo"), refused);
    EXPECT_EQ(readRefusal(directory.path()), refused);
    EXPECT_EQ(readRefusal("/dev/zero"), refused);
}

TEST(ReadingWithALimit, failsOnALinkAndOnAMissingFile) {
    const TemporaryDirectory directory;
    directory.write("file", "content");
    fs::create_symlink("file", directory / "link");
    const auto code = [](const fs::path& path) {
        try {
            static_cast<void>(AtomicStateFile::readBounded(path, 100, refused));
        } catch (const POSIXError& error) {
            return error.code;
        }
        return 0;
    };
    EXPECT_EQ(code(directory / "link"), ELOOP);
    EXPECT_EQ(code(directory / "missing"), ENOENT);
}

TEST(ReadingWithALimit, saysThatAnUnreadableFileIsUnreadable) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path(), fs::perms(0755));
    const fs::path file = directory.write("file", "secret");
    fs::permissions(file, fs::perms::none);
    EXPECT_EQ(asOrdinaryUser([&] {
        return thrownMessage<POSIXError>(
            [&] { static_cast<void>(AtomicStateFile::readBounded(file, 100, refused)); });
    }),
        "Permission denied");
}

TEST(EnsuringADirectory, createsItWithItsParentsWhenAsked) {
    const TemporaryDirectory directory;
    const mode_t former = ::umask(027);
    AtomicStateFile::ensureDirectory(directory / "a/b/c/", IfMissing::Create, refused);
    ::umask(former);
    EXPECT_TRUE(fs::is_directory(directory / "a/b/c"));
    EXPECT_EQ(fs::status(directory / "a/b/c").permissions(), fs::perms(0750)) << "default attributes";
    AtomicStateFile::ensureDirectory(directory / "a", IfMissing::Refuse, refused);
}

TEST(EnsuringADirectory, refusesAnythingElse) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    directory.write("file", "");
    fs::create_directory_symlink("folder", directory / "link");
    fs::create_symlink("nowhere", directory / "dangling");
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    for (const char* name : {"file", "link", "link/", "dangling", "fifo"})
        EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                      [&] { AtomicStateFile::ensureDirectory(directory / name, IfMissing::Create, refused); }),
            refused)
            << name;
    EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                  [&] { AtomicStateFile::ensureDirectory(directory / "missing", IfMissing::Refuse, refused); }),
        refused);
    EXPECT_FALSE(fs::exists(directory / "missing"));
    EXPECT_FALSE(fs::exists(directory / "nowhere"));
}

TEST(TheIdentityOfADirectory, isItsDeviceAndInode) {
    const TemporaryDirectory directory;
    struct stat status{};
    ASSERT_EQ(::lstat(directory.path().c_str(), &status), 0);
    const DirectoryIdentity identity = AtomicStateFile::directoryIdentity(directory.path() / "");
    EXPECT_EQ(identity, (DirectoryIdentity{.device = status.st_dev, .inode = status.st_ino}));
    fs::create_directory(directory / "other");
    EXPECT_NE(AtomicStateFile::directoryIdentity(directory / "other"), identity);
}

TEST(TheIdentityOfADirectory, isRefusedForAnythingElse) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    fs::create_directory_symlink(".", directory / "link");
    for (const char* name : {"file", "link"})
        EXPECT_EQ(thrownMessage<AtomicStateFileError>(
                      [&] { static_cast<void>(AtomicStateFile::directoryIdentity(directory / name)); }),
            "Kestrin's state root is not a regular directory.");
    EXPECT_EQ(thrownMessage<POSIXError>(
                  [&] { static_cast<void>(AtomicStateFile::directoryIdentity(directory / "missing")); }),
        "No such file or directory");
}

TEST(WritingAllBytes, writesThemAllAndFailsWithWhatTheSystemSays) {
    const TemporaryDirectory directory;
    const std::string content(300'000, 'y');
    const int descriptor = ::open((directory / "file").c_str(), O_WRONLY | O_CREAT, 0600);
    AtomicStateFile::writeAllAndSync(content, descriptor, refused);
    AtomicStateFile::writeAllAndSync("", descriptor, refused);
    ::close(descriptor);
    EXPECT_EQ(directory.read("file"), content);
    EXPECT_EQ(thrownMessage<POSIXError>([&] { AtomicStateFile::writeAllAndSync("x", descriptor, refused); }),
        "Bad file descriptor");
    const int full = ::open("/dev/full", O_WRONLY);
    EXPECT_EQ(thrownMessage<POSIXError>([&] { AtomicStateFile::writeAllAndSync("x", full, refused); }),
        "No space left on device");
    ::close(full);
}

TEST(WritingAllBytes, syncsAlsoWhenThereAreNone) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0); // a pipe cannot be synced, which shows that it was tried
    EXPECT_EQ(thrownMessage<POSIXError>([&] { AtomicStateFile::writeAllAndSync("", ends[1], refused); }),
        "Invalid argument");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(FlushingADirectory, takesARealDirectoryOnly) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    fs::create_directory_symlink(".", directory / "link");
    AtomicStateFile::syncDirectory(directory.path());
    EXPECT_EQ(
        thrownMessage<POSIXError>([&] { AtomicStateFile::syncDirectory(directory / "file"); }), "Not a directory");
    EXPECT_EQ(
        thrownMessage<POSIXError>([&] { AtomicStateFile::syncDirectory(directory / "link"); }), "Not a directory");
    EXPECT_EQ(thrownMessage<POSIXError>([&] { AtomicStateFile::syncDirectory(directory / "missing"); }),
        "No such file or directory");
}

TEST(WritingANewFile, createsItForItsOwnerAlone) {
    const TemporaryDirectory directory;
    const mode_t former = ::umask(0);
    AtomicStateFile::writeNewFile("content", directory / "file", refused);
    ::umask(former);
    EXPECT_EQ(directory.read("file"), "content");
    EXPECT_EQ(fs::status(directory / "file").permissions(), fs::perms(0600));
}

TEST(WritingANewFile, neverTouchesWhatIsThere) {
    const TemporaryDirectory directory;
    directory.write("file", "old");
    fs::create_symlink("target", directory / "link");
    for (const char* name : {"file", "link"})
        EXPECT_EQ(
            thrownMessage<POSIXError>([&] { AtomicStateFile::writeNewFile("new", directory / name, refused); }),
            "File exists");
    EXPECT_EQ(directory.read("file"), "old");
    EXPECT_FALSE(fs::exists(directory / "target"));
}
