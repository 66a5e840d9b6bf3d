#include "app/network/linux/socket_owners.h"
#include "app/network/linux/socket_stats_source.h"
#include "app/runner/spawn.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <ostream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {

void PrintTo(const NetworkBytes& bytes, std::ostream* out) {
    *out << bytes.name << "." << bytes.pid << " in " << bytes.bytesIn << " out " << bytes.bytesOut;
}

void PrintTo(const SocketOwner& owner, std::ostream* out) {
    *out << owner.name << "." << owner.pid;
}

namespace {

// Moves `count` bytes through the descriptor with `io` (read or write).
template <typename Io>
bool transfer(Io io, int descriptor, std::size_t count) {
    std::string block(65536, 'x');
    while (count > 0) {
        const ssize_t moved = io(descriptor, block.data(), std::min(count, block.size()));
        if (moved <= 0) {
            return false;
        }
        count -= static_cast<std::size_t>(moved);
    }
    return true;
}

// A forked copy of this test process that does its part of a transfer, says
// so on `done`, and then holds its connection open until killed.
class Peer {
public:
    template <typename Part>
    Peer(int done, Part part) : pid_(fork()) {
        if (pid_ == 0) {
            const char status = part() ? 'y' : 'n';
            if (write(done, &status, 1) != 1) {
                _exit(1);
            }
            while (true) {
                pause();
            }
        }
    }
    ~Peer() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    pid_t pid() const { return pid_; }

private:
    pid_t pid_;
};

std::string ownName() {
    std::ifstream comm("/proc/self/comm");
    std::string name;
    std::getline(comm, name);
    return name;
}

// A new socket that this process keeps open, and its inode.
std::pair<int, std::uint64_t> openSocket() {
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    struct stat status {};
    fstat(descriptor, &status);
    return {descriptor, status.st_ino};
}

// A forked copy of this test process that opens a socket, holds it twice,
// and opens one more each time it is woken, telling the inode of each.
class SocketHolder {
public:
    SocketHolder() {
        if (pipe(reports_) != 0) {
            ADD_FAILURE() << "no pipe";
            return;
        }
        sigemptyset(&wake_);
        sigaddset(&wake_, SIGUSR1);
        sigprocmask(SIG_BLOCK, &wake_, nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            auto [descriptor, inode] = openSocket();
            if (dup(descriptor) < 0) {
                _exit(1);
            }
            while (true) {
                if (write(reports_[1], &inode, sizeof inode) != sizeof inode) {
                    _exit(1);
                }
                int signal = 0;
                sigwait(&wake_, &signal);
                inode = openSocket().second;
            }
        }
        sigprocmask(SIG_UNBLOCK, &wake_, nullptr);
    }
    ~SocketHolder() {
        end();
        close(reports_[0]);
        close(reports_[1]);
    }
    SocketHolder(const SocketHolder&) = delete;
    SocketHolder& operator=(const SocketHolder&) = delete;

    pid_t pid() const { return pid_; }
    // The inode of the socket it opened last.
    std::uint64_t opened() const {
        std::uint64_t inode = 0;
        EXPECT_EQ(read(reports_[0], &inode, sizeof inode), static_cast<ssize_t>(sizeof inode));
        return inode;
    }
    void wake() const { kill(pid_, SIGUSR1); }
    void end() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
            pid_ = 0;
        }
    }

private:
    int reports_[2] = {-1, -1};
    sigset_t wake_{};
    pid_t pid_ = 0;
};

std::vector<SocketOwner> ownersOf(const SocketOwnersByInode& found, std::uint64_t inode) {
    const auto owners = found.find(inode);
    return owners == found.end() ? std::vector<SocketOwner>{} : owners->second;
}

TEST(SocketOwners, FollowWhatEachProcessHoldsAcrossRuns) {
    SocketHolder holder;
    const std::vector<SocketOwner> holderOnly{{.pid = holder.pid(), .name = ownName()}};
    SocketOwners owners;
    const std::uint64_t first = holder.opened();
    EXPECT_EQ(ownersOf(owners.find(), first), holderOnly);
    // Standing still, it is known to hold what it held.
    EXPECT_EQ(ownersOf(owners.find(), first), holderOnly);

    holder.wake();
    const std::uint64_t second = holder.opened();
    const SocketOwnersByInode& afterWaking = owners.find();
    EXPECT_EQ(ownersOf(afterWaking, first), holderOnly);
    EXPECT_EQ(ownersOf(afterWaking, second), holderOnly);

    holder.end();
    const SocketOwnersByInode& afterEnding = owners.find();
    EXPECT_FALSE(afterEnding.contains(first));
    EXPECT_FALSE(afterEnding.contains(second));
}

TEST(SocketOwners, CountThisProcessToo) {
    const auto [descriptor, inode] = openSocket();
    SocketOwners owners;
    EXPECT_EQ(ownersOf(owners.find(), inode),
              (std::vector<SocketOwner>{{.pid = getpid(), .name = ownName()}}));
    close(descriptor);
    EXPECT_FALSE(owners.find().contains(inode));
}

TEST(SocketStatsSource, LoopbackTransferBetweenTwoProcessesShowsUpForEach) {
    const auto tool = SocketStatsSource::locate();
    if (!tool) {
        GTEST_SKIP() << "ss is not installed";
    }
    constexpr std::size_t request = 300000;
    constexpr std::size_t reply = 70000;

    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{.sin_family = AF_INET, .sin_addr = {.s_addr = htonl(INADDR_LOOPBACK)}};
    socklen_t length = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length), 0);
    int done[2];
    ASSERT_EQ(pipe(done), 0);

    const Peer server(done[1], [&] {
        const int connection = accept(listener, nullptr, nullptr);
        return transfer(read, connection, request) && transfer(write, connection, reply);
    });
    const Peer client(done[1], [&] {
        const int connection = socket(AF_INET, SOCK_STREAM, 0);
        return connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
               transfer(write, connection, request) && transfer(read, connection, reply);
    });
    close(listener);
    close(done[1]);
    char status[2] = {};
    ASSERT_EQ(read(done[0], status, 1) + read(done[0], status + 1, 1), 2);
    close(done[0]);
    ASSERT_EQ(std::string(status, 2), "yy");

    const std::string name = ownName();
    const NetworkSample expected{
        {client.pid(), {.pid = client.pid(), .name = name, .bytesIn = reply, .bytesOut = request}},
        {server.pid(), {.pid = server.pid(), .name = name, .bytesIn = request, .bytesOut = reply}}};
    // Acknowledgements may trail the data by a delayed-ACK interval.
    NetworkSample seen;
    for (int attempt = 0; attempt < 50; ++attempt) {
        SocketStatsSource source(*tool);
        const auto result = Spawn::run(source.toolPath(), source.arguments(), 15.0, 5.0);
        ASSERT_TRUE(result);
        const auto sample = source.sample(result->output);
        ASSERT_TRUE(sample);
        seen = *sample;
        std::erase_if(seen, [&](const auto& entry) { return !expected.contains(entry.first); });
        if (seen == expected) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(seen, expected);
}

} // namespace
} // namespace loadwarden
