#include "app/network/net_top_source.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(NetTopSource, ClosesTheLastBlockItself) {
    NetTopSource source;
    EXPECT_EQ(source.sample("time,,bytes_in,bytes_out,\n"
                            "12:00:00.000000,launchd.1,10,20,\n"),
              (NetworkSample{{1, {.pid = 1, .name = "launchd", .bytesIn = 10, .bytesOut = 20}}}));
    EXPECT_FALSE(source.sample(""));
    EXPECT_FALSE(source.sample("time,,bytes_in,bytes_out,\n"));
}

} // namespace
} // namespace loadwarden
