// Reopening a real process as it was started: its command line and folder.
#include "app/control/reopening.h"
#include "app/foundation/user_files.h"
#include "tests/support/event_loop.h"

#include <QProcess>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

// The pids of running processes with exactly this command line.
std::vector<std::int32_t> runningWith(const std::string& commandLine) {
    std::vector<std::int32_t> pids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            fileText(entry.path() / "cmdline") == commandLine) {
            pids.push_back(std::stoi(name));
        }
    }
    return pids;
}

TEST(ReopeningTest, AProcessStartsAgainWithItsArgumentsInItsFolder) {
    support::ensureApplication();
    // An odd duration, so no other sleep on the machine is mistaken for it.
    qint64 started = 0;
    ASSERT_TRUE(QProcess::startDetached("/bin/sleep", {"4321.5"}, "/tmp", &started));
    ProcessGroup group;
    group.leader.record = {.pid = static_cast<std::int32_t>(started), .path = "/usr/bin/sleep"};

    const auto reopening = reopeningOf(group);
    ASSERT_TRUE(reopening);
    EXPECT_EQ(*reopening, (Reopening{"/usr/bin/sleep", {"4321.5"}, "/tmp"}));

    kill(static_cast<pid_t>(started), SIGKILL);
    ASSERT_TRUE(reopen(*reopening));
    std::vector<std::int32_t> again;
    ASSERT_TRUE(support::processEventsUntil([&] {
        again = runningWith(std::string("/usr/bin/sleep\0", 15) + "4321.5" + '\0');
        return !again.empty();
    }));
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(again.front()) + "/cwd"),
              "/tmp");
    for (const std::int32_t pid : again) {
        kill(pid, SIGKILL);
    }
    EXPECT_FALSE(reopeningOf(group)); // gone: nothing says how it was started
}

} // namespace
} // namespace loadwarden
