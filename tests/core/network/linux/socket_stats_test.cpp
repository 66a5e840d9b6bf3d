// ss's listing of TCP sockets, and the ledger that turns its per-socket
// counters into each process's bytes.
#include "core/network/linux/socket_stats.h"
#include "core/network/linux/tcp_socket_ledger.h"

#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace loadwarden {
namespace {

std::string captured(const std::string& name) {
    std::ifstream file(std::string(LOADWARDEN_TEST_DATA) + "/" + name);
    std::stringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

TEST(SocketStats, ReadsOwnedSocketsOfACapturedListing) {
    // Captured as an unprivileged user: the first connection belongs to
    // another user and shows no owners. The second socket of the second
    // connection is held by a parent and its forked child.
    // Local address, peer, owners, bytes in and out.
    EXPECT_EQ(SocketStats::parse(captured("ss_output.txt")),
              (std::vector<SocketBytes>{
                  {"127.0.0.1:47176", "127.0.0.1:53203", {{13276, "curl"}}, 1200, 250000},
                  {"127.0.0.1:53203",
                   "127.0.0.1:47176",
                   {{13280, "Web Content wor"}, {13277, "Web Content"}},
                   250000,
                   1200},
                  {"[::1]:49074", "[::1]:53071", {{13278, "ssh"}}, 70000, 4096},
                  {"[::1]:53071", "[::1]:49074", {{13279, "sshd: user"}}, 4096, 70000},
              }));
}

TEST(SocketStats, SkipsUnreadableSocketsOneByOne) {
    const std::string output =
        "\t bytes_received:5\n" // details without a socket line
        "ESTAB 0 0 10.0.0.1:1 10.0.0.2:2 users:((\"a\",pid=1,fd=3))\n" // no details
        "ESTAB 0 0 10.0.0.1:3 10.0.0.2:4 users:((\"b\",pid=x,fd=3))\n"
        "\t bytes_received:5\n"
        "ESTAB 0 0 10.0.0.1:5 10.0.0.2:6 users:((\"c\",pid=3,fd=3)\n"
        "\t bytes_received:5\n"
        "ESTAB 0 0 10.0.0.1:7 10.0.0.2:8 users:((\"d\",pid=4,fd=3))\n"
        "\t bytes_received:12x bytes_acked:3\n"
        "ESTAB 0 0\n"
        "\t bytes_received:5\n"
        "tcp ESTAB 0 0 10.0.0.1:9 10.0.0.2:10 users:((\"kept\",pid=5,fd=3))\n"
        "\t cubic bytes_sent:50 bytes_retrans:10 bytes_acked:41 bytes_received:7 segs_in:2\n"
        "ESTAB 0 0 10.0.0.1:11 10.0.0.2:12 users:((\"quiet\",pid=6,fd=3))\n"
        "\t cubic bytes_acked:1\n"
        "ESTAB 0 0 10.0.0.1:13 10.0.0.2:14 users:((\"cut\",pid=7,fd=3))\n"
        "\t bytes_received:12";
    EXPECT_EQ(SocketStats::parse(output),
              (std::vector<SocketBytes>{{"10.0.0.1:9", "10.0.0.2:10", {{5, "kept"}}, 7, 40},
                                        {"10.0.0.1:11", "10.0.0.2:12", {{6, "quiet"}}}}));
}

SocketBytes socket(const std::string& local, std::vector<SocketOwner> owners, std::uint64_t in,
                   std::uint64_t out) {
    return SocketBytes{
        .local = local, .peer = "10.0.0.9:443", .owners = owners, .bytesIn = in, .bytesOut = out};
}

// A sample of one process.
NetworkSample only(std::int32_t pid, const std::string& name, std::uint64_t in, std::uint64_t out) {
    return {{pid, {.pid = pid, .name = name, .bytesIn = in, .bytesOut = out}}};
}

TEST(TcpSocketLedger, ClosingOneConnectionDoesNotHideTheTrafficOfTheOthers) {
    TcpSocketLedger ledger;
    const SocketOwner browser{10, "browser"};
    EXPECT_EQ(
        ledger.record({socket("a:1", {browser}, 100, 100), socket("a:2", {browser}, 1000, 1000)}),
        only(10, "browser", 1100, 1100));
    // a:2 closed, a:1 moved 200 in and 50 out, a:3 opened since and counts
    // in full.
    EXPECT_EQ(ledger.record({socket("a:1", {browser}, 300, 150), socket("a:3", {browser}, 5, 6)}),
              only(10, "browser", 1305, 1156));
    // Same addresses with lower counters: a new connection, counted in full.
    EXPECT_EQ(ledger.record({socket("a:1", {browser}, 20, 10), socket("a:3", {browser}, 5, 6)}),
              only(10, "browser", 1325, 1166));
    // A process without live sockets drops out.
    EXPECT_TRUE(ledger.record({}).empty());
}

TEST(TcpSocketLedger, SharedSocketCountsOnceAndChangesOwnerWithoutAJump) {
    TcpSocketLedger ledger;
    const SocketOwner parent{20, "server"};
    const SocketOwner child{21, "server"};
    EXPECT_EQ(ledger.record({socket("s:1", {child, parent}, 500, 500)}),
              only(20, "server", 500, 500));
    // The lowest pid keeps it while it holds it, even when a lower one joins.
    EXPECT_EQ(ledger.record({socket("s:1", {SocketOwner{5, "early"}, parent}, 600, 500)}),
              only(20, "server", 600, 500));
    // Once the owner lets go, only the growth moves to the next one.
    EXPECT_EQ(ledger.record({socket("s:1", {child}, 610, 530)}), only(21, "server", 10, 30));
}

TEST(TcpSocketLedger, ReusedPidStartsAfreshAndHugeCountersSaturate) {
    TcpSocketLedger ledger;
    ledger.record({socket("p:1", {{30, "old"}}, 700, 700)});
    EXPECT_EQ(ledger.record({socket("p:3", {{30, "new"}}, 9, 9)}), only(30, "new", 9, 9));

    const std::uint64_t huge = std::numeric_limits<std::uint64_t>::max() - 1;
    EXPECT_EQ(ledger.record(
                  {socket("h:1", {{40, "big"}}, huge, 0), socket("h:2", {{40, "big"}}, huge, 0)}),
              only(40, "big", huge + 1, 0));
}

} // namespace
} // namespace loadwarden
