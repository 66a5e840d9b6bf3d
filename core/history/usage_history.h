#pragma once

#include "core/foundation/calendar.h"
#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"
#include "core/grouping/process_group.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace loadwarden {

// The spans the App history tab offers, by their number of days.
enum class HistoryRange { today, week, month };

template <>
struct RawValues<HistoryRange> {
    static constexpr RawValueTable<HistoryRange, 3> table{{
        {HistoryRange::today, "1"},
        {HistoryRange::week, "7"},
        {HistoryRange::month, "30"},
    }};
};

int dayCount(HistoryRange range);
// "Today", "7 days", "30 days".
std::string_view title(HistoryRange range);

// One app at one refresh.
struct AppSample {
    std::string key; // historyKey of its group
    std::string name;
    double cpuPercent = 0.0; // of one core
    std::uint64_t memoryBytes = 0;
    std::optional<double> energyWatts;
    std::optional<double> networkPerSecond; // in plus out

    bool operator==(const AppSample&) const = default;
    auto fields() const {
        return std::tie(key, name, cpuPercent, memoryBytes, energyWatts, networkPerSecond);
    }
};

struct UsageTotals {
    double cpuSeconds = 0.0;
    std::uint64_t peakMemory = 0;
    double energyJoules = 0.0;
    double networkBytes = 0.0;
    double seenSeconds = 0.0;

    bool operator==(const UsageTotals&) const = default;
    auto fields() const {
        return std::tie(cpuSeconds, peakMemory, energyJoules, networkBytes, seenSeconds);
    }
};

struct AppUsage {
    std::string key;
    std::string name;
    UsageTotals totals;

    bool operator==(const AppUsage&) const = default;
    auto fields() const { return std::tie(key, name, totals); }
};

// What each app used, per app and per calendar day, for the App history tab.
struct UsageHistory {
    static constexpr int currentVersion = 1;
    static constexpr int keptDays = 35;
    // A longer gap between two refreshes (a sleep, say) counts for nothing.
    static constexpr Seconds longestInterval = 600.0;

    int version = currentVersion;
    std::map<std::string, std::map<std::string, AppUsage>> days; // day key → app key → usage

    // Adds one refresh, `interval` seconds after the one before, to the day of `date`.
    void record(const std::vector<AppSample>& samples, Date date, const Calendar& calendar,
                Seconds interval);
    // Keeps today and the keep − 1 days before it.
    void prune(Date now, int keep, const Calendar& calendar);
    // The totals of the last `dayCount` days, most processor time first.
    std::vector<AppUsage> summary(int dayCount, Date now, const Calendar& calendar) const;

    bool operator==(const UsageHistory&) const = default;
    auto fields() const { return std::tie(version, days); }
};

// The key an app's history is kept under: its group's, except that a lone
// process is known by its executable (or name) rather than its pid, so that
// a tool's history survives restarts.
std::string historyKey(const ProcessGroup& group);

// The refresh's groups as history samples, without the program itself: its
// own process is left out of the group it is in, and a group it leads (itself
// and the tools it runs) is skipped.
std::vector<AppSample> usageSamples(const std::vector<ProcessGroup>& groups, std::int32_t ownPID);

// The folder of a tool recorded by its executable, with the home folder as
// "~"; absent for apps and for tools known only by name.
std::optional<std::string> usageFolder(const AppUsage& usage, std::string_view home);

// Sorted keys, as the history file keeps them.
std::string encodeHistory(const UsageHistory& history);
// Absent when the text does not decode or comes from a newer version.
std::optional<UsageHistory> decodeHistory(std::string_view text);

} // namespace loadwarden
