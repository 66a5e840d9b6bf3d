#include "app/network/net_top_source.h"
#include "app/network/socket_stats_source.h"
#include "app/runner/spawn.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <ostream>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {

void PrintTo(const NetworkBytes& bytes, std::ostream* out) {
    *out << bytes.name << "." << bytes.pid << " in " << bytes.bytesIn << " out " << bytes.bytesOut;
}

namespace {

TEST(NetTopSource, ClosesTheLastBlockItself) {
    NetTopSource source;
    EXPECT_EQ(source.sample("time,,bytes_in,bytes_out,\n"
                            "12:00:00.000000,launchd.1,10,20,\n"),
              (NetworkSample{{1, {.pid = 1, .name = "launchd", .bytesIn = 10, .bytesOut = 20}}}));
    EXPECT_FALSE(source.sample(""));
    EXPECT_FALSE(source.sample("time,,bytes_in,bytes_out,\n"));
}

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
