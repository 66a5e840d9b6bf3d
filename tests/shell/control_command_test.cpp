// The process commands as a user runs them: the real program, in its own
// defaults folder, acting on real child processes.
#include "app/foundation/user_files.h"
#include "shell/control_options.h"
#include "tests/support/program_runs.h"
#include "tests/support/spinning_children.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace loadwarden {
namespace {

using namespace std::chrono_literals;
using support::exitStatusOf;
using support::settlesAt;
using support::spawn;
using support::stateOf;

class ControlCommand : public testing::Test {
protected:
    ControlCommand() {
        std::filesystem::create_directories(config);
        setenv("XDG_CONFIG_HOME", config.c_str(), 1); // inherited by the program
    }
    ~ControlCommand() override { std::filesystem::remove_all(config); }

    pid_t spinner() { return children.add(); }
    int run(const std::vector<std::string>& arguments) {
        std::vector<std::string> all{LOADWARDEN_PROGRAM};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return exitStatusOf(spawn(all));
    }
    pid_t start(const std::vector<std::string>& arguments, const std::string& output) {
        std::vector<std::string> all{LOADWARDEN_PROGRAM};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return spawn(all, output);
    }
    // Waits for the program's first line, which it prints once the group is held.
    static void waitForHold(const std::string& output) {
        for (int wait = 0; wait < 500 && std::filesystem::file_size(output) == 0; ++wait) {
            std::this_thread::sleep_for(10ms);
        }
    }

    const std::filesystem::path config =
        std::filesystem::temp_directory_path() / ("control-command-" + std::to_string(getpid()));
    support::SpinningChildren children;
};

TEST_F(ControlCommand, AKilledCopysProcessesAreContinuedByTheNextWhileALiveCopyKeepsItsOwn) {
    const pid_t limited = spinner();
    const pid_t paused = spinner();
    const std::string limitOutput = (config / "limit.txt").string();
    const std::string pauseOutput = (config / "pause.txt").string();
    std::ofstream(limitOutput).flush();
    std::ofstream(pauseOutput).flush();
    const pid_t limitCopy = start({"limit", std::to_string(limited), "10"}, limitOutput);
    const pid_t pauseCopy = start({"pause", std::to_string(paused)}, pauseOutput);
    waitForHold(limitOutput);
    waitForHold(pauseOutput);
    ASSERT_EQ(settlesAt(paused, 'T'), 'T');
    ASSERT_EQ(settlesAt(limited, 'T'), 'T');

    ::kill(limitCopy, SIGKILL);
    exitStatusOf(limitCopy);
    ::kill(limited, SIGSTOP); // as its last stop may have left it
    // Any start of the program, even for help, continues what the dead copy held...
    EXPECT_EQ(run({"--help"}), 0);
    EXPECT_EQ(settlesAt(limited, 'R'), 'R');
    // ...and leaves alone what the live copy holds.
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(stateOf(paused), 'T');

    // Ended politely, the live copy continues its own and leaves the ledger empty.
    ::kill(pauseCopy, SIGTERM);
    EXPECT_EQ(exitStatusOf(pauseCopy), 0);
    EXPECT_EQ(settlesAt(paused, 'R'), 'R');
    const std::string stored = fileText(config / "Loadwarden" / "Loadwarden.conf").value_or("");
    EXPECT_NE(stored.find(R"({\"entries\":[]})"), std::string::npos) << stored;
}

TEST_F(ControlCommand, PauseForAWhileThenEverythingRunsAgain) {
    const pid_t child = spinner();
    const std::string output = (config / "pause.txt").string();
    const pid_t copy = start({"pause", std::to_string(child), "--for", "1s"}, output);
    EXPECT_EQ(settlesAt(child, 'T'), 'T');
    EXPECT_EQ(exitStatusOf(copy), 0);
    EXPECT_EQ(settlesAt(child, 'R'), 'R');
    const std::string text = fileText(output).value_or("");
    EXPECT_NE(text.find("Paused "), std::string::npos) << text;
    EXPECT_NE(text.find("Resumed "), std::string::npos) << text;
}

TEST_F(ControlCommand, RefusalsAndUnknownTargetsSignalNothing) {
    EXPECT_EQ(run({"pause", "1"}), 3) << "the first process is the system's";
    const pid_t own = spinner();
    EXPECT_EQ(run({"end", std::to_string(own)}), 0) << "a process of the user's own";
    EXPECT_EQ(waitpid(own, nullptr, 0), own);
    children.pids.pop_back();
    EXPECT_EQ(run({"pause", "no-such-app-anywhere"}), 2);
    EXPECT_EQ(run({"limit", "1"}), 2) << "no percent";
    EXPECT_EQ(run({"force-quit", std::to_string(spinner())}), 2) << "not confirmed";
}

TEST(ControlOptions, TargetsPercentsAndDurations) {
    const auto limit = std::get<ControlOptions>(
        parseControlOptions(ControlVerb::limit, {"Safari", "25%", "--for", "1.5h"}));
    EXPECT_EQ(limit.target, "Safari");
    EXPECT_EQ(limit.percent, 25.0);
    EXPECT_EQ(limit.holdFor, 5400.0);
    EXPECT_EQ(std::get<ControlOptions>(parseControlOptions(ControlVerb::pause, {"7", "--for=90"}))
                  .holdFor,
              90.0);
    EXPECT_EQ(std::get<std::string>(parseControlOptions(ControlVerb::limit, {"Safari", "none"})),
              "PERCENT takes a share of one core above 0, such as 25 or 150, not 'none'");
    EXPECT_EQ(std::get<std::string>(parseControlOptions(ControlVerb::pause, {})),
              "needs a TARGET: a pid, a group id or a name");
    EXPECT_EQ(std::get<std::string>(parseControlOptions(ControlVerb::resume, {"7", "--for", "9"})),
              "unknown option '--for'");
    EXPECT_TRUE(std::get<ControlOptions>(parseControlOptions(ControlVerb::pause, {"--help"})).help);
}

} // namespace
} // namespace loadwarden
