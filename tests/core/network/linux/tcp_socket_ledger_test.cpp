#include "core/network/linux/tcp_socket_ledger.h"

#include <gtest/gtest.h>
#include <limits>

namespace loadwarden {
namespace {

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
