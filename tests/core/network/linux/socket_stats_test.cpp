#include "core/network/linux/socket_stats.h"

#include <fstream>
#include <gtest/gtest.h>
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

} // namespace
} // namespace loadwarden
