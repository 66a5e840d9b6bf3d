#include "core/metrics/exposition.h"
#include "core/metrics/listen_address.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace loadwarden {
namespace {

const std::vector<MetricFamily> sample{
    {"demo_cpu_seconds", MetricType::counter, "seconds", "Time used.",
     {{{{"app", "a"}}, 1.5}, {{{"app", "b"}}, 2}}},
    {"demo_memory_bytes", MetricType::gauge, "bytes", "Memory.", {{{}, 1048576}}},
    {"demo_absent_ratio", MetricType::gauge, "ratio", "Never measured.", {}},
};

TEST(Exposition, TextFormatNamesCountersByTheirSamplesAndLeavesEmptyFamiliesOut) {
    EXPECT_EQ(expose(sample, ExpositionFormat::text),
              "# TYPE demo_cpu_seconds_total counter\n"
              "# HELP demo_cpu_seconds_total Time used.\n"
              "demo_cpu_seconds_total{app=\"a\"} 1.5\n"
              "demo_cpu_seconds_total{app=\"b\"} 2\n"
              "# TYPE demo_memory_bytes gauge\n"
              "# HELP demo_memory_bytes Memory.\n"
              "demo_memory_bytes 1048576\n");
}

TEST(Exposition, OpenMetricsGivesUnitsAndTotalsAndEnds) {
    EXPECT_EQ(expose(sample, ExpositionFormat::openMetrics),
              "# TYPE demo_cpu_seconds counter\n"
              "# UNIT demo_cpu_seconds seconds\n"
              "# HELP demo_cpu_seconds Time used.\n"
              "demo_cpu_seconds_total{app=\"a\"} 1.5\n"
              "demo_cpu_seconds_total{app=\"b\"} 2\n"
              "# TYPE demo_memory_bytes gauge\n"
              "# UNIT demo_memory_bytes bytes\n"
              "# HELP demo_memory_bytes Memory.\n"
              "demo_memory_bytes 1048576\n"
              "# EOF\n");
    EXPECT_EQ(expose({}, ExpositionFormat::openMetrics), "# EOF\n");
    EXPECT_EQ(expose({}, ExpositionFormat::text), "");
}

TEST(Exposition, AwkwardAppNamesAreEscapedAndMadeUTF8) {
    const std::vector<MetricFamily> families{
        {"demo", MetricType::gauge, "", "A \"help\" with \\ and\nnewline.",
         {{{{"name", "say \"hi\"\\now\nthen \xff\xfe end"}}, 1}}}};
    const std::string text = expose(families, ExpositionFormat::text);
    EXPECT_NE(text.find("# HELP demo A \"help\" with \\\\ and\\nnewline.\n"), std::string::npos);
    EXPECT_NE(text.find("demo{name=\"say \\\"hi\\\"\\\\now\\nthen \xEF\xBF\xBD\xEF\xBF\xBD end\"} 1\n"),
              std::string::npos)
        << text;
    const std::string open = expose(families, ExpositionFormat::openMetrics);
    EXPECT_NE(open.find("# HELP demo A \\\"help\\\" with \\\\ and\\nnewline.\n"), std::string::npos);
}

TEST(Exposition, NumbersAreExactAndSpecialValuesSpelledOut) {
    const auto written = [](double value) {
        const std::string text =
            expose({{"x", MetricType::gauge, "", "", {{{}, value}}}}, ExpositionFormat::text);
        return text.substr(text.rfind(' ') + 1, text.size() - text.rfind(' ') - 2);
    };
    EXPECT_EQ(written(1.5e300), "1.5e+300");
    EXPECT_EQ(written(123456789012), "123456789012");
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(-3), "-3");
    EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "+Inf");
    EXPECT_EQ(written(-std::numeric_limits<double>::infinity()), "-Inf");
    EXPECT_EQ(written(std::nan("")), "NaN");
}

TEST(Exposition, AcceptHeaderChoosesTheFormat) {
    // What Prometheus sends.
    EXPECT_EQ(negotiateFormat("application/openmetrics-text;version=1.0.0,application/"
                              "openmetrics-text;version=0.0.1;q=0.75,text/plain;version=0.0.4;"
                              "q=0.5,*/*;q=0.1"),
              ExpositionFormat::openMetrics);
    EXPECT_EQ(negotiateFormat(""), ExpositionFormat::text);
    EXPECT_EQ(negotiateFormat("*/*"), ExpositionFormat::text);
    EXPECT_EQ(negotiateFormat("Application/OpenMetrics-Text"), ExpositionFormat::openMetrics);
    EXPECT_EQ(negotiateFormat("text/plain;version=0.0.4;q=0.9, application/openmetrics-text; "
                              "version=\"1.0.0\"; q=0.8"),
              ExpositionFormat::text);
    // Versions not spoken here are not taken.
    EXPECT_EQ(negotiateFormat("application/openmetrics-text;version=0.0.1"),
              ExpositionFormat::text);
    EXPECT_EQ(negotiateFormat("application/openmetrics-text;q=0, text/plain"),
              ExpositionFormat::text);
    EXPECT_EQ(negotiateFormat("application/json"), ExpositionFormat::text);
    EXPECT_EQ(contentType(ExpositionFormat::openMetrics),
              "application/openmetrics-text; version=1.0.0; charset=utf-8");
    EXPECT_EQ(contentType(ExpositionFormat::text), "text/plain; version=0.0.4; charset=utf-8");
}

TEST(ListenAddress, ReadsAddressesAndSaysWhatIsWrong) {
    EXPECT_EQ(std::get<ListenAddress>(parseListenAddress("127.0.0.1:9000")),
              (ListenAddress{"127.0.0.1", 9000}));
    EXPECT_EQ(std::get<ListenAddress>(parseListenAddress("[::1]:0")), (ListenAddress{"::1", 0}));
    EXPECT_EQ(std::get<ListenAddress>(parseListenAddress("0.0.0.0:21177")),
              (ListenAddress{"0.0.0.0", 21177}));
    for (const char* bad : {"127.0.0.1", ":80", "::1:80", "host:65536", "host:-1", "host:port",
                            "host:"}) {
        EXPECT_TRUE(std::holds_alternative<std::string>(parseListenAddress(bad))) << bad;
    }
}

} // namespace
} // namespace loadwarden
