// `loadwarden info` on real child processes.
#include "tests/support/program_runs.h"

#include <arpa/inet.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>

namespace loadwarden {
namespace {

nlohmann::json infoOf(pid_t pid) {
    const auto output = std::filesystem::temp_directory_path() /
                        ("info-command-" + std::to_string(getpid()) + ".json");
    const int status = support::exitStatusOf(
        support::spawn({LOADWARDEN_PROGRAM, "info", std::to_string(pid), "--json"}, output));
    EXPECT_EQ(status, 0);
    std::ifstream file(output);
    auto json = nlohmann::json::parse(file);
    std::filesystem::remove(output);
    return json;
}

// A child listening on a port the system chose, which it reports through a pipe.
pid_t listeningChild(std::uint16_t& port) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            listen(listener, 1) != 0 ||
            getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            _exit(1);
        }
        const std::uint16_t chosen = ntohs(address.sin_port);
        if (write(ends[1], &chosen, sizeof chosen) != sizeof chosen) {
            _exit(1);
        }
        pause();
        _exit(0);
    }
    close(ends[1]);
    EXPECT_EQ(read(ends[0], &port, sizeof port), static_cast<ssize_t>(sizeof port));
    close(ends[0]);
    return child;
}

TEST(InfoCommand, ShowsTheListeningPortOfAChildAndWhoMadeItsProgram) {
    std::uint16_t port = 0;
    const pid_t child = listeningChild(port);
    const auto info = infoOf(child);
    kill(child, SIGKILL);
    support::exitStatusOf(child);
    EXPECT_EQ(info["process"]["record"]["pid"], child);
    EXPECT_EQ(info["fileInfo"]["ports"], nlohmann::json::array({port}));
    EXPECT_GE(info["fileInfo"]["files"].get<int>(), 4); // three standard ones and the socket
    EXPECT_EQ(info["codeInfo"]["signer"], "Not from a package"); // this test's own program
    EXPECT_EQ(info["codeInfo"]["sandboxed"], false);
}

TEST(InfoCommand, NamesThePackageOfASystemProgram) {
    if (!std::filesystem::exists("/var/lib/dpkg/info/coreutils.list")) {
        GTEST_SKIP() << "no Debian package database here";
    }
    const pid_t sleeper = support::spawn({"/bin/sleep", "30"});
    const auto info = infoOf(sleeper);
    kill(sleeper, SIGKILL);
    support::exitStatusOf(sleeper);
    EXPECT_EQ(info["codeInfo"]["signer"], "coreutils (package)");
    EXPECT_EQ(info["fileInfo"]["ports"], nlohmann::json::array());
}

TEST(InfoCommand, RefusesWhatIsNotAProcess) {
    EXPECT_EQ(support::exitStatusOf(support::spawn({LOADWARDEN_PROGRAM, "info", "0"})), 2);
    EXPECT_EQ(support::exitStatusOf(support::spawn({LOADWARDEN_PROGRAM, "info", "2147483647"})),
              1);
}

} // namespace
} // namespace loadwarden
