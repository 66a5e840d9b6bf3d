#include "core/network/net_top_parser.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

NetworkBytes bytes(std::int32_t pid, const std::string& name, std::uint64_t in, std::uint64_t out) {
    return NetworkBytes{.pid = pid, .name = name, .bytesIn = in, .bytesOut = out};
}

TEST(NetTopParser, TextArrivingInPiecesYieldsEachSampleOnceInOrder) {
    NetTopParser parser;
    EXPECT_TRUE(parser.feed(",bytes_in,bytes_out,\nlaunchd.1,10,").empty());
    EXPECT_TRUE(parser.feed("20,\nkernel_task.0,5,6,\n").empty());
    const auto samples = parser.feed(",bytes_in,bytes_out,\n"
                                     ",bytes_in,bytes_out,\n" // an empty block gives nothing
                                     "launchd.1,30,40,\n"
                                     "time,\n"
                                     "Safari.77,1,");
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[0], (NetworkSample{{0, bytes(0, "kernel_task", 5, 6)},
                                         {1, bytes(1, "launchd", 10, 20)}}));
    EXPECT_EQ(samples[1], (NetworkSample{{1, bytes(1, "launchd", 30, 40)}}));
    // The unfinished row waits for its line feed.
    const auto last = parser.feed("2,\ntime,\n");
    ASSERT_EQ(last.size(), 1u);
    EXPECT_EQ(last[0], (NetworkSample{{77, bytes(77, "Safari", 1, 2)}}));
}

TEST(NetTopParser, UnreadableLinesAreSkippedAndALaterRowOfAProcessReplacesAnEarlierOne) {
    NetTopParser parser;
    const auto samples = parser.feed("time,,bytes_in,bytes_out,\n"
                                     "12:00:00.1,com.example.agent.512,1,1,\n"
                                     "garbage\n"
                                     "12:00:00.1,nodot,1,2,\n"
                                     "12:00:00.1,name.x,1,2,\n"
                                     "12:00:00.1,name.-3,1,2,\n"
                                     "12:00:00.1,name.99999999999,1,2,\n"
                                     "12:00:00.1,name.5,,2,\n"
                                     "12:00:00.1,name.5,-1,2,\n"
                                     "12:00:00.1,name.5,1,2.5,\n"
                                     "name.5,1\n"
                                     "\n"
                                     "12:00:00.2,com.example.agent.512,7,9,\n"
                                     "time,\n");
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0], (NetworkSample{{512, bytes(512, "com.example.agent", 7, 9)}}));
}

} // namespace
} // namespace loadwarden
