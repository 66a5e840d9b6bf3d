#pragma once

#include "core/foundation/date.h"
#include "core/grouping/process_group.h"
#include "core/measurement/system_sample.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace loadwarden {

// What an exporter counts: figures that only rise while it runs. Each app
// adds what its processes did since the last tick, so an app whose helpers
// come and go never seems to go back, which a scraper would take for a
// restart. Apps beyond the busiest few add to one shared `other` instead,
// so the number of series stays bounded.
class UsageCounters {
public:
    static constexpr std::size_t defaultShownApps = 50;

    struct Totals {
        double cpuSeconds = 0.0;
        // Absent until some process of the app has the figure.
        std::optional<double> diskReadBytes;
        std::optional<double> diskWrittenBytes;
        std::optional<double> networkReceivedBytes;
        std::optional<double> networkSentBytes;
    };
    struct SystemTotals {
        double diskReadBytes = 0.0;
        double diskWrittenBytes = 0.0;
        double networkReceivedBytes = 0.0;
        double networkSentBytes = 0.0;
    };

    // One tick: its groups and system sample, and the seconds it covered.
    // The `shownApps` busiest groups keep totals of their own.
    void record(const std::vector<ProcessGroup>& groups, const SystemSample& system,
                Seconds interval, std::size_t shownApps);

    // The totals of a group of the last tick; null for any other.
    const Totals* app(const std::string& groupID) const;
    // Whether the group has series of its own rather than adding to `other`.
    bool isShown(const std::string& groupID) const { return shown_.contains(groupID); }
    const Totals& other() const { return other_; }
    const SystemTotals& system() const { return system_; }

private:
    // Kept from tick to tick and updated in place: at thousands of
    // processes, rebuilding them is most of a tick's cost.
    struct ProcessMark {
        Date started = 0.0;
        std::uint64_t cpuTimeNs = 0;
        std::optional<std::uint64_t> diskReadBytes;
        std::optional<std::uint64_t> diskWrittenBytes;
        std::uint64_t tick = 0; // the last one that saw the process
    };
    struct AppEntry {
        Totals totals;
        std::uint64_t tick = 0;
    };

    Totals tickOf(const ProcessGroup& group, Seconds interval);

    std::uint64_t tick_ = 0;
    std::unordered_map<std::int32_t, ProcessMark> marks_;
    std::unordered_map<std::string, AppEntry> apps_;
    std::unordered_set<std::string> shown_;
    Totals other_;
    SystemTotals system_;
};

} // namespace loadwarden
