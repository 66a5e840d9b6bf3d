#include "core/control/paused_ledger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

namespace loadwarden {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The machine's processes by pid, with their start times.
struct Machine {
    std::map<std::int32_t, Date> running;
    PausedLedger::StartTime startTime() const {
        return [this](std::int32_t pid) -> std::optional<Date> {
            const auto found = running.find(pid);
            return found == running.end() ? std::nullopt : std::optional(found->second);
        };
    }
};

const PausedLedger::Process window{.pid = 900, .started = 10.5};
const PausedLedger::Process commandLine{.pid = 950, .started = 20.25};

TEST(PausedLedger, RecordsLiveProcessesAndContinuesOnlyTheSameOnes) {
    Machine machine{.running = {{512, 1.5}, {37, 2.5}, {4096, 3.5}, {700, 4.5}}};
    PausedLedger ledger;
    ledger.record({512, 37, 4096, 4096, 999}, machine.startTime(), window); // 999 has ended
    EXPECT_EQ(ledger.entries.size(), 3u);
    EXPECT_THAT(ledger.livePids(machine.startTime()), ElementsAre(37, 512, 4096));

    // 512 ended and its pid went to a newer process: that one is not ours.
    machine.running[512] = 1.500001;
    EXPECT_THAT(ledger.livePids(machine.startTime()), ElementsAre(37, 4096));
    // Forgetting does not ask whether it is still the same process.
    ledger.forget({512, 37});
    EXPECT_THAT(ledger.livePids(machine.startTime()), ElementsAre(4096));
    EXPECT_EQ(ledger.entries.size(), 1u);
}

TEST(PausedLedger, CopiesKeepEachOthersEntriesAndReleaseOnlyTheDeadOnes) {
    Machine machine{.running = {{window.pid, window.started},
                                {commandLine.pid, commandLine.started},
                                {100, 1.0},
                                {200, 2.0}}};
    PausedLedger windows;
    windows.record({100}, machine.startTime(), window);
    PausedLedger commands;
    commands.record({200}, machine.startTime(), commandLine);

    // Each saves its own part into what is stored.
    PausedLedger stored = PausedLedger::merged({}, windows, window);
    stored = PausedLedger::merged(stored, commands, commandLine);
    EXPECT_THAT(stored.livePids(machine.startTime()), ElementsAre(100, 200));
    // The window resumes its group; the command line's entry stays.
    stored = PausedLedger::merged(stored, {}, window);
    EXPECT_THAT(stored.livePids(machine.startTime()), ElementsAre(200));
    EXPECT_EQ(stored.heldBy(commandLine).entries.size(), 1u);

    // While its holder runs, nobody else releases it; once killed, the next does.
    EXPECT_THAT(stored.orphans(machine.startTime()).entries, IsEmpty());
    machine.running.erase(commandLine.pid);
    EXPECT_THAT(stored.orphans(machine.startTime()).livePids(machine.startTime()),
                ElementsAre(200));
    // A holder's pid taken by another program is no holder.
    machine.running[commandLine.pid] = 99.0;
    EXPECT_EQ(stored.orphans(machine.startTime()).entries.size(), 1u);
}

TEST(PausedLedger, StoredAsJSONAndAnythingElseIsEmpty) {
    Machine machine{.running = {{512, 1700000000.123456}}};
    PausedLedger ledger;
    ledger.record({512}, machine.startTime(), window);
    const auto decoded = PausedLedger::decoded(ledger.encoded());
    EXPECT_EQ(decoded, ledger);
    EXPECT_EQ(decoded.entries.begin()->holder, window);
    EXPECT_THAT(decoded.livePids(machine.startTime()), ElementsAre(512)) << "exact to the bit";

    // A ledger written without holders: its entries belong to nobody running.
    const auto older = PausedLedger::decoded(R"({"entries":[{"pid":512,"started":1.5}]})");
    ASSERT_EQ(older.entries.size(), 1u);
    EXPECT_FALSE(older.entries.begin()->holder);
    EXPECT_EQ(older.orphans(machine.startTime()).entries.size(), 1u);

    for (const char* foreign : {"", "{}", "not json", R"({"entries":[{"pid":"x"}]})", "[1,2]"}) {
        EXPECT_THAT(PausedLedger::decoded(foreign).entries, IsEmpty()) << foreign;
        EXPECT_EQ(PausedLedger::parsed(foreign), std::nullopt) << foreign;
    }
    EXPECT_EQ(PausedLedger{}.encoded(), R"({"entries":[]})");
}

} // namespace
} // namespace loadwarden
