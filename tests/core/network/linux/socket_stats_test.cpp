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
    // Captured as root. The first connection belongs to another user, whose
    // descriptors an ordinary user cannot read: it has no owners here. The
    // second socket of the second
    // connection is held by a parent and its forked child; the last one has
    // resent data, which counts once.
    const SocketOwnersByInode owners{
        {310461, {{13276, "curl"}}},
        {310462, {{13280, "Web Content wor"}, {13277, "Web Content"}}},
        {310464, {{13278, "ssh"}}},
        {310465, {{13279, "sshd: user"}}},
    };
    // Local address, peer, owners, bytes in and out.
    EXPECT_EQ(SocketStats::parse(captured("ss_output.txt"), owners),
              (std::vector<SocketBytes>{
                  {"127.0.0.1:58878", "127.0.0.1:35115", {{13276, "curl"}}, 1200, 127973},
                  {"127.0.0.1:35115",
                   "127.0.0.1:58878",
                   {{13280, "Web Content wor"}, {13277, "Web Content"}},
                   127973,
                   1200},
                  {"[::1]:43194", "[::1]:36179", {{13278, "ssh"}}, 70000, 4096},
                  {"[::1]:36179", "[::1]:43194", {{13279, "sshd: user"}}, 4096, 70000},
              }));
}

TEST(SocketStats, SkipsUnreadableSocketsOneByOne) {
    const std::string output =
        "\t bytes_received:5\n"                        // details without a socket line
        "ESTAB 0 0 10.0.0.1:1 10.0.0.2:2 ino:1 sk:1\n" // no details
        "ESTAB 0 0 10.0.0.1:3 10.0.0.2:4 ino:x sk:2\n"
        "\t bytes_received:5\n"
        "ESTAB 0 0 10.0.0.1:5 10.0.0.2:6 sk:3\n"
        "\t bytes_received:5\n"
        "ESTAB 0 0 10.0.0.1:7 10.0.0.2:8 ino:4 sk:4\n"
        "\t bytes_received:12x bytes_acked:3\n"
        "ESTAB 0 0\n"
        "\t bytes_received:5\n"
        "tcp ESTAB 0 0 10.0.0.1:9 10.0.0.2:10 timer:(keepalive,1min,0) ino:5 sk:5 <->\n"
        "\t cubic bytes_sent:50 bytes_retrans:10 bytes_acked:41 bytes_received:7 segs_in:2\n"
        "ESTAB 0 0 10.0.0.1:11 10.0.0.2:12 uid:1000 ino:6 sk:6\n"
        "\t cubic bytes_acked:1\n"
        "ESTAB 0 0 10.0.0.1:13 10.0.0.2:14 ino:99 sk:7\n" // nobody of ours holds it
        "\t bytes_received:5\n"
        "ESTAB 0 0 10.0.0.1:15 10.0.0.2:16 ino:7 sk:8\n"
        "\t bytes_received:12";
    SocketOwnersByInode owners;
    for (std::uint64_t inode = 1; inode <= 7; ++inode) {
        owners[inode] = {{static_cast<std::int32_t>(inode), "p" + std::to_string(inode)}};
    }
    EXPECT_EQ(SocketStats::parse(output, owners),
              (std::vector<SocketBytes>{{"10.0.0.1:9", "10.0.0.2:10", {{5, "p5"}}, 7, 40},
                                        {"10.0.0.1:11", "10.0.0.2:12", {{6, "p6"}}}}));
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
