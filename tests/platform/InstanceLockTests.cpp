#include "platform/InstanceLock.h"

#include "fakes/TemporaryDirectory.h"
#include "platform/EventWait.h"
#include "platform/SavedEnvironment.h"

#include <QCoreApplication>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kestrin {

using test::waitUntil;
using Result = InstanceLock::Result;

constexpr int atOnce = 1;

/// Another program that holds a lock file, until it is killed.
class Holder {
public:
    explicit Holder(const std::filesystem::path& file) {
        int pipe[2];
        if (::pipe(pipe) != 0) throw std::runtime_error("no pipe");
        process_ = ::fork();
        if (process_ == 0) {
            const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT, 0600);
            const char answer = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 'y' : 'n';
            if (::write(pipe[1], &answer, 1) != 1) ::_exit(1);
            for (;;)
                ::pause();
        }
        ::close(pipe[1]);
        char answer = 'n';
        holds = ::read(pipe[0], &answer, 1) == 1 && answer == 'y';
        ::close(pipe[0]);
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() { kill(); }

    void kill() {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = -1;
        holds = false;
    }

    bool holds = false;

private:
    pid_t process_ = -1;
};

/// A socket that takes what a second start says.
class Listener {
public:
    explicit Listener(const std::filesystem::path& path) : socket_(::socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.native().size());
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("no socket");
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { ::close(socket_); }

    [[nodiscard]] std::string heard() const {
        std::string text(100, '\0');
        const ssize_t size = ::recv(socket_, text.data(), text.size(), MSG_DONTWAIT);
        text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return text;
    }

private:
    int socket_;
};

class AnInstanceLock : public testing::Test {
protected:
    AnInstanceLock() {
        first.onActivate = [this](const std::string& token) { activations.push_back(token); };
    }

    TemporaryDirectory directory;
    const std::filesystem::path file = directory / "kestrin.lock";
    InstanceLock first{file, atOnce};
    std::vector<std::string> activations;
};

TEST_F(AnInstanceLock, isHeldByTheFirstAndTakenForTheSecond) {
    EXPECT_EQ(first.acquire({}), Result::Held);
    EXPECT_EQ(InstanceLock(file, atOnce).acquire({}), Result::Taken);
}

TEST_F(AnInstanceLock, hearsOfEverySecondStartAndItsToken) {
    ASSERT_EQ(first.acquire({}), Result::Held);
    EXPECT_EQ(InstanceLock(file, atOnce).acquire("token"), Result::Taken);
    EXPECT_EQ(InstanceLock(file, atOnce).acquire({}), Result::Taken);
    ASSERT_TRUE(waitUntil([&] { return activations.size() == 2; }));
    EXPECT_EQ(activations, (std::vector<std::string>{"token", ""}));
}

TEST_F(AnInstanceLock, isFreeAgainWhenItsHolderEndsAndLeavesNoSocket) {
    {
        InstanceLock earlier(file, atOnce);
        ASSERT_EQ(earlier.acquire({}), Result::Held);
        EXPECT_EQ(directory.entries(), (std::vector<std::string>{"kestrin.lock", "kestrin.socket"}));
    }
    EXPECT_EQ(directory.entries(), std::vector<std::string>{"kestrin.lock"});
    EXPECT_EQ(first.acquire({}), Result::Held);
}

TEST_F(AnInstanceLock, ofAProgramThatWasKilledLocksNobodyOut) {
    Holder other(file);
    ASSERT_TRUE(other.holds);
    EXPECT_EQ(first.acquire({}), Result::Taken);
    other.kill();
    InstanceLock next(file, atOnce);
    EXPECT_EQ(next.acquire({}), Result::Held);
}

TEST_F(AnInstanceLock, waitsForAHolderThatIsAboutToEnd) {
    Holder other(file);
    ASSERT_TRUE(other.holds);
    InstanceLock patient(file, 2, [&] { other.kill(); });
    EXPECT_EQ(patient.acquire({}), Result::Held);
    EXPECT_FALSE(other.holds);
}

TEST_F(AnInstanceLock, takesThePlaceOfASocketThatACrashLeft) {
    directory.write("kestrin.socket", "left");
    ASSERT_EQ(first.acquire({}), Result::Held);
    EXPECT_EQ(InstanceLock(file, atOnce).acquire("token"), Result::Taken);
    EXPECT_TRUE(waitUntil([&] { return !activations.empty(); }));
}

TEST_F(AnInstanceLock, waitsForAHolderThatHasYetToListenBehindASocketThatACrashLeft) {
    const Holder other(file);
    ASSERT_TRUE(other.holds);
    const std::filesystem::path socket = directory / "kestrin.socket";
    std::optional<Listener> listener(std::in_place, socket);
    listener.reset(); // its socket stays
    int rests = 0;
    InstanceLock second(file, 4, [&] {
        constexpr int restsForTheLock = 3;
        if (++rests == restsForTheLock + 1) std::filesystem::remove(socket);
        if (rests == restsForTheLock + 2) listener.emplace(socket);
    });
    EXPECT_EQ(second.acquire("token"), Result::Taken);
    ASSERT_TRUE(listener);
    EXPECT_EQ(listener->heard(), "token");
}

TEST_F(AnInstanceLock, endsTheSecondStartEvenIfTheFirstCannotBeTold) {
    const Holder other(file); // which listens to nobody
    ASSERT_TRUE(other.holds);
    EXPECT_EQ(first.acquire("token"), Result::Taken);
}

TEST_F(AnInstanceLock, isUnavailableWhereThereIsNoDirectory) {
    EXPECT_EQ(InstanceLock(directory / "missing" / "kestrin.lock").acquire({}), Result::Unavailable);
}

TEST_F(AnInstanceLock, followsNoLinkAndOpensNothingButAFile) {
    directory.write("target", "kept");
    std::filesystem::create_symlink(directory / "target", file);
    EXPECT_EQ(first.acquire({}), Result::Unavailable);
    EXPECT_EQ(directory.read("target"), "kept");
    const std::filesystem::path pipe = directory / "pipe.lock";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(InstanceLock(pipe).acquire({}), Result::Unavailable);
}

TEST_F(AnInstanceLock, worksWithoutASocketWhereThePathIsTooLongForOne) {
    const std::filesystem::path deep = directory / std::string(150, 'x');
    std::filesystem::create_directory(deep);
    InstanceLock holder(deep / "kestrin.lock");
    EXPECT_EQ(holder.acquire({}), Result::Held);
    EXPECT_EQ(InstanceLock(deep / "kestrin.lock", atOnce).acquire("token"), Result::Taken);
}

TEST(ThePlaceOfTheInstanceLock, isTheRuntimeDirectoryAndElseAPlaceOfTheUsersOwn) {
    const test::SavedEnvironment saved({"XDG_RUNTIME_DIR"});
    const TemporaryDirectory directory;
    const std::string name = "app.kestrin.Kestrin-" + std::to_string(::getuid()) + ".lock";
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(directory.path().string()));
    EXPECT_EQ(InstanceLock::place(), directory / name);

    const std::filesystem::path session = "/run/user/" + std::to_string(::getuid());
    const std::filesystem::path fallback = std::filesystem::is_directory(session) ? session : "/tmp";
    for (const char* unusable : {"", "relative", "/no/such/directory"}) {
        qputenv("XDG_RUNTIME_DIR", unusable);
        EXPECT_EQ(InstanceLock::place(), fallback / name) << unusable;
    }
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(InstanceLock::place(), fallback / name);
}

} // namespace kestrin
