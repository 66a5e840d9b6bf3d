#include "core/measurement/linux/process_files.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(ProcStat, FieldsAfterACommandWithSpacesAndParentheses) {
    const auto stat = ProcStat::parse(
        "4242 (my (odd) name) S 17 4242 4242 0 -1 4194560 120 0 0 0 150 25 0 0 20 0 3 0 "
        "987654 12345678 2048 18446744073709551615 1 1 0 0 0 0 0 0 0 0 0 0 17 1 0 0 0 0 0\n");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->pid, 4242);
    EXPECT_EQ(stat->comm, "my (odd) name");
    EXPECT_EQ(stat->state, 'S');
    EXPECT_EQ(stat->ppid, 17);
    EXPECT_EQ(stat->userTicks, 150u);
    EXPECT_EQ(stat->systemTicks, 25u);
    EXPECT_EQ(stat->threads, 3);
    EXPECT_EQ(stat->startTicks, 987654u);
    EXPECT_EQ(stat->residentPages, 2048u);
    EXPECT_FALSE(stat->isKernelThread());
}

TEST(ProcStat, KernelThreadsAndBrokenLines) {
    const auto kthreadd = ProcStat::parse("2 (kthreadd) S 0 0 0 0 -1 2129984 0 0 0 0 0 0 0 0 20 0 "
                                          "1 0 31 0 0 18446744073709551615 0 0 0 0 0 0 0");
    ASSERT_TRUE(kthreadd);
    EXPECT_TRUE(kthreadd->isKernelThread());

    EXPECT_FALSE(ProcStat::parse(""));
    EXPECT_FALSE(ProcStat::parse("12 (cut short) S 1 2 3"));
    EXPECT_FALSE(ProcStat::parse("12 no parentheses S 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 "
                                 "18 19 20 21 22 23 24"));
}

TEST(ProcStat, StateLetters) {
    using enum RunState;
    // D, waiting uninterruptibly (usually on a disk), is not a quiet sleep.
    const std::pair<char, RunState> letters[] = {{'R', running},  {'S', sleeping}, {'D', other},
                                                 {'I', sleeping}, {'T', stopped},  {'t', stopped},
                                                 {'Z', zombie},   {'X', other}};
    for (const auto& [letter, state] : letters) {
        EXPECT_EQ(runStateFromProcLetter(letter), state) << letter;
    }
}

TEST(ProcFiles, ResidentPagesOfStatm) {
    EXPECT_EQ(parseStatmResidentPages("2884 1210 925 23 0 319 0\n"), 1210u);
    EXPECT_FALSE(parseStatmResidentPages("2884\n"));
    EXPECT_FALSE(parseStatmResidentPages(""));
}

TEST(ProcFiles, DiskCounters) {
    const auto io = parseProcIO("rchar: 9000\nwchar: 800\nsyscr: 1\nsyscw: 2\nread_bytes: 4096\n"
                                "write_bytes: 8192\ncancelled_write_bytes: 0\n");
    ASSERT_TRUE(io);
    EXPECT_EQ(io->readBytes, 4096u);
    EXPECT_EQ(io->writeBytes, 8192u);
    EXPECT_FALSE(parseProcIO("rchar: 9000\nread_bytes: 4096\n"));
}

TEST(ProcFiles, ExecutableLinkAndArgumentZero) {
    EXPECT_EQ(executablePathFromLink("/usr/bin/old (deleted)"), "/usr/bin/old");
    EXPECT_EQ(executablePathFromLink("/usr/bin/vim"), "/usr/bin/vim");
    EXPECT_EQ(firstArgument(std::string_view("/usr/bin/python3\0script.py\0", 27)),
              "/usr/bin/python3");
    EXPECT_EQ(firstArgument("sshd: admin@pts/0"), "sshd: admin@pts/0");
}

TEST(ProcFiles, ArchitectureFromTheELFMachine) {
    auto header = [](unsigned char machineLow, unsigned char machineHigh, char endianness = 1) {
        std::string bytes("\x7f"
                          "ELF",
                          4);
        bytes += '\x02'; // 64-bit
        bytes += endianness;
        bytes.resize(18, '\0');
        bytes += static_cast<char>(machineLow);
        bytes += static_cast<char>(machineHigh);
        return bytes;
    };
    EXPECT_EQ(architectureFromELFHeader(header(62, 0)), Architecture::x86_64);
    EXPECT_EQ(architectureFromELFHeader(header(3, 0)), Architecture::x86);
    EXPECT_EQ(architectureFromELFHeader(header(183, 0)), Architecture::arm64);
    EXPECT_EQ(architectureFromELFHeader(header(0, 183, 2)), Architecture::arm64);
    EXPECT_EQ(architectureFromELFHeader(header(40, 0)), Architecture::arm);
    EXPECT_EQ(architectureFromELFHeader(header(243, 0)), Architecture::unknown); // RISC-V
    EXPECT_EQ(architectureFromELFHeader("#!/bin/sh\nexec something else"), Architecture::unknown);
    EXPECT_EQ(architectureFromELFHeader("\x7f"
                                        "ELF"),
              Architecture::unknown);
}

TEST(ProcessDisplayName, KernelNameUnlessItWasCutShort) {
    // Under 15 bytes the kernel's name is whole, and wins over a rewritten argv[0].
    EXPECT_EQ(processDisplayName("sshd", "sshd: admin@pts/0", "/usr/sbin/sshd"), "sshd");
    EXPECT_EQ(processDisplayName("bash", "-bash", "/usr/bin/bash"), "bash");
    // Cut at 15 bytes: argv[0] or the executable continues it.
    EXPECT_EQ(processDisplayName("gnome-shell-cal", "/usr/libexec/gnome-shell-calendar-server",
                                 "/usr/libexec/gnome-shell-calendar-server"),
              "gnome-shell-calendar-server");
    EXPECT_EQ(processDisplayName("loadwarden-long", "loadwarden-long-name", ""),
              "loadwarden-long-name");
    EXPECT_EQ(
        processDisplayName("long-named-work", "python3", "/opt/tools/long-named-worker (deleted)"),
        "long-named-worker");
    // A 15-byte name that nothing continues stays as it is.
    EXPECT_EQ(processDisplayName("Isolated Web Co", "/usr/lib/firefox/firefox",
                                 "/usr/lib/firefox/firefox"),
              "Isolated Web Co");
    EXPECT_EQ(processDisplayName("", "", "/usr/bin/env"), "env");
}

} // namespace
} // namespace loadwarden
