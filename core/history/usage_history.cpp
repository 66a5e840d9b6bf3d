#include "core/history/usage_history.h"

#include "core/text/utf8_repair.h"

#include <algorithm>

namespace loadwarden {

namespace {

AppSample sampleOf(const ProcessGroup& group) {
    // Names from the kernel may be any bytes; the file holds UTF-8, and the
    // key must read back as it was recorded.
    return {.key = repairUTF8(historyKey(group)),
            .name = repairUTF8(group.name),
            .cpuPercent = group.totalCPU(),
            .memoryBytes = group.totalMemory(),
            .energyWatts = group.totalEnergy(),
            .networkPerSecond = group.totalNetwork()};
}

void merge(UsageTotals& into, const UsageTotals& more) {
    into.cpuSeconds += more.cpuSeconds;
    into.peakMemory = std::max(into.peakMemory, more.peakMemory);
    into.energyJoules += more.energyJoules;
    into.networkBytes += more.networkBytes;
    into.seenSeconds += more.seenSeconds;
}

} // namespace

int dayCount(HistoryRange range) {
    switch (range) {
    case HistoryRange::today:
        return 1;
    case HistoryRange::week:
        return 7;
    case HistoryRange::month:
        return 30;
    }
    return 1;
}

std::string_view title(HistoryRange range) {
    switch (range) {
    case HistoryRange::today:
        return "Today";
    case HistoryRange::week:
        return "7 days";
    case HistoryRange::month:
        return "30 days";
    }
    return {};
}

void UsageHistory::record(const std::vector<AppSample>& samples, Date date,
                          const Calendar& calendar, Seconds interval) {
    if (!(interval > 0.0 && interval < longestInterval)) {
        return;
    }
    auto& day = days[calendar.dayKey(date)];
    for (const AppSample& sample : samples) {
        AppUsage& usage = day[sample.key];
        usage.key = sample.key;
        usage.name = sample.name;
        UsageTotals& totals = usage.totals;
        totals.cpuSeconds += interval * sample.cpuPercent / 100.0;
        totals.peakMemory = std::max(totals.peakMemory, sample.memoryBytes);
        totals.energyJoules += interval * sample.energyWatts.value_or(0.0);
        totals.networkBytes += interval * sample.networkPerSecond.value_or(0.0);
        totals.seenSeconds += interval;
    }
}

void UsageHistory::prune(Date now, int keep, const Calendar& calendar) {
    const std::string oldestKept = calendar.dayKey(now, 1 - keep);
    days.erase(days.begin(), days.lower_bound(oldestKept));
}

std::vector<AppUsage> UsageHistory::summary(int dayCount, Date now,
                                            const Calendar& calendar) const {
    std::map<std::string, AppUsage> merged;
    // From today back, so an app keeps the name it had most recently.
    for (int back = 0; back < dayCount; ++back) {
        const auto day = days.find(calendar.dayKey(now, -back));
        if (day == days.end()) {
            continue;
        }
        for (const auto& [key, usage] : day->second) {
            const auto [entry, isNew] = merged.try_emplace(key, usage);
            if (!isNew) {
                merge(entry->second.totals, usage.totals);
            }
        }
    }
    std::vector<AppUsage> apps;
    apps.reserve(merged.size());
    for (auto& [key, usage] : merged) {
        apps.push_back(std::move(usage));
    }
    std::ranges::sort(apps, [](const AppUsage& a, const AppUsage& b) {
        if (a.totals.cpuSeconds != b.totals.cpuSeconds) {
            return a.totals.cpuSeconds > b.totals.cpuSeconds;
        }
        return a.name < b.name;
    });
    return apps;
}

std::string historyKey(const ProcessGroup& group) {
    if (!group.id.starts_with("pid:")) {
        return group.id;
    }
    const ProcessRecord& leader = group.leader.record;
    return "exe:" + (leader.path.empty() ? leader.name : leader.path);
}

std::vector<AppSample> usageSamples(const std::vector<ProcessGroup>& groups, std::int32_t ownPID) {
    const auto isOwn = [ownPID](const LiveProcess& member) { return member.record.pid == ownPID; };
    std::vector<AppSample> samples;
    samples.reserve(groups.size());
    for (const ProcessGroup& group : groups) {
        if (isOwn(group.leader)) {
            continue; // this program, with the tools it runs
        }
        if (std::ranges::none_of(group.members, isOwn)) {
            samples.push_back(sampleOf(group));
            continue;
        }
        ProcessGroup others = group;
        std::erase_if(others.members, isOwn);
        samples.push_back(sampleOf(others));
    }
    return samples;
}

std::optional<std::string> usageFolder(const AppUsage& usage, std::string_view home) {
    if (!usage.key.starts_with("exe:/")) {
        return std::nullopt;
    }
    std::string_view path(usage.key);
    path.remove_prefix(std::string_view("exe:").size());
    std::string_view folder = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
    if (!home.empty() && folder.starts_with(home) &&
        (folder.size() == home.size() || folder[home.size()] == '/')) {
        return "~" + std::string(folder.substr(home.size()));
    }
    return std::string(folder);
}

} // namespace loadwarden
