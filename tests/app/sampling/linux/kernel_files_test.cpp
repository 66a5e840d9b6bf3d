// The reading aids behind every tick: a kept file's buffer, reused from file
// to file, and the /proc listing, read again on every tick from one open
// directory.

#include "app/sampling/linux/kernel_files.h"
#include "app/sampling/linux/process_directory.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace loadwarden {
namespace {

bool lists(ProcessDirectory& directory, pid_t pid) {
    return std::ranges::any_of(directory.processes(), [pid](const ProcessDirectory::Entry& entry) {
        return entry.pid == pid;
    });
}

std::string fileText(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(KeptFile, EachReadHoldsItsOwnFileWholeWhateverTheBufferHeldBefore) {
    // An environment larger than the buffer's first size, a command line far shorter.
    const std::string variable = "LOADWARDEN_TEST=" + std::string(10'000, 'x');
    const pid_t child = fork();
    if (child == 0) {
        char* const environment[] = {const_cast<char*>(variable.c_str()), nullptr};
        execle("/bin/sleep", "sleep", "1000", nullptr, environment);
        _exit(1);
    }
    const std::string commandLine("sleep\0" "1000\0", 11);
    const std::string cmdlinePath = "/proc/" + std::to_string(child) + "/cmdline";
    for (int attempt = 0; attempt < 500 && fileText(cmdlinePath) != commandLine; ++attempt) {
        usleep(10'000);
    }
    ASSERT_EQ(fileText(cmdlinePath), commandLine);

    std::string buffer;
    KeptFile environ;
    KeptFile cmdline;
    EXPECT_EQ(environ.read(ProcessFilePath(child, "environ"), buffer, true), variable + '\0');
    EXPECT_EQ(cmdline.read(ProcessFilePath(child, "cmdline"), buffer, true), commandLine);
    EXPECT_EQ(environ.read(ProcessFilePath(child, "environ"), buffer, true), variable + '\0');
    EXPECT_TRUE(environ.isOpen() && cmdline.isOpen());

    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    // Gone: nothing, rather than what the buffer still holds.
    EXPECT_FALSE(cmdline.read(ProcessFilePath(child, "cmdline"), buffer, true));
    EXPECT_FALSE(cmdline.isOpen());
}

std::optional<std::uint64_t> inodeOf(ProcessDirectory& directory, pid_t pid) {
    for (const auto& entry : directory.processes()) {
        if (entry.pid == pid) {
            return entry.inode;
        }
    }
    return std::nullopt;
}

TEST(ProcessDirectory, EachListingSeesTheProcessesOfItsMoment) {
    ProcessDirectory directory;
    ASSERT_TRUE(lists(directory, getpid()));
    // The same process, the same folder.
    const auto inode = inodeOf(directory, getpid());
    EXPECT_EQ(inodeOf(directory, getpid()), inode);
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    EXPECT_TRUE(lists(directory, child));
    EXPECT_EQ(directory.owner(child), geteuid());
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(lists(directory, child));
    EXPECT_FALSE(directory.owner(child));
    EXPECT_TRUE(lists(directory, getpid()));
}

} // namespace
} // namespace loadwarden
