#include "shell/commands.h"
#include "shell/snapshot_options.h"

#include <gtest/gtest.h>
#include <sstream>

namespace loadwarden {
namespace {

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

Outcome run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int status = runProgram(arguments, out, err);
    return {status, out.str(), err.str()};
}

TEST(SnapshotOptions, ValuesGivenEitherWayAndBadOnesSayWhatWasWrong) {
    const auto given = std::get<SnapshotOptions>(
        parseSnapshotOptions({"--ticks", "5", "--json", "--interval=0.5"}));
    EXPECT_TRUE(given.json);
    EXPECT_EQ(given.interval, 0.5);
    EXPECT_EQ(given.ticks, 5);

    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--interval"}, "--interval needs a number of seconds"},
        {{"--interval", "0"}, "--interval takes seconds above 0 and up to 86400, not '0'"},
        {{"--interval", "soon"}, "--interval takes seconds above 0 and up to 86400, not 'soon'"},
        {{"--interval", "100000"},
         "--interval takes seconds above 0 and up to 86400, not '100000'"},
        {{"--ticks"}, "--ticks needs a number"},
        {{"--ticks=0"}, "--ticks takes a whole number of at least 1, not '0'"},
        {{"--ticks", "2.5"}, "--ticks takes a whole number of at least 1, not '2.5'"},
        {{"--json=yes"}, "--json takes no value"},
        {{"--verbose"}, "unknown option '--verbose'"},
        {{"now"}, "unexpected argument 'now'"},
    };
    for (const auto& [arguments, message] : cases) {
        const auto parsed = parseSnapshotOptions(arguments);
        const auto* error = std::get_if<std::string>(&parsed);
        EXPECT_EQ(error ? *error : "accepted", message);
    }
}

TEST(Program, BadCommandLinesFailWithOneLineAndUsageOnStandardError) {
    const auto missing = run({});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err.substr(0, missing.err.find('\n')), "loadwarden: no command given");
    EXPECT_NE(missing.err.find("usage: loadwarden <command>"), std::string::npos);

    const auto unknown = run({"snapshots"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err.substr(0, unknown.err.find('\n')),
              "loadwarden: unknown command 'snapshots'");

    const auto badOption = run({"snapshot", "--tick", "3"});
    EXPECT_EQ(badOption.status, 2);
    EXPECT_EQ(badOption.out, "");
    EXPECT_EQ(badOption.err.substr(0, badOption.err.find('\n')),
              "loadwarden snapshot: unknown option '--tick'");
    EXPECT_NE(badOption.err.find(snapshotUsage), std::string::npos);
}

TEST(Program, HelpGoesToStandardOutput) {
    const auto help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("  snapshot  "), std::string::npos);
    const auto snapshotHelp = run({"snapshot", "-h"});
    EXPECT_EQ(snapshotHelp.status, 0);
    EXPECT_EQ(snapshotHelp.out, snapshotUsage);
}

} // namespace
} // namespace loadwarden
