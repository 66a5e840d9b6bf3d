#include "core/metrics/usage_counters.h"

#include <algorithm>
#include <tuple>

namespace loadwarden {

namespace {

// What a cumulative figure rose by since the mark; all of it for a process
// seen for the first time, whose whole life fell since the last tick or
// before the counting began.
template <typename Value>
double risen(Value now, const std::optional<Value>& before) {
    return before && *before <= now ? static_cast<double>(now - *before)
                                    : static_cast<double>(now);
}

void add(std::optional<double>& total, std::optional<double> amount) {
    if (amount) {
        total = total.value_or(0.0) + *amount;
    }
}

void add(UsageCounters::Totals& total, const UsageCounters::Totals& amount) {
    total.cpuSeconds += amount.cpuSeconds;
    add(total.diskReadBytes, amount.diskReadBytes);
    add(total.diskWrittenBytes, amount.diskWrittenBytes);
    add(total.networkReceivedBytes, amount.networkReceivedBytes);
    add(total.networkSentBytes, amount.networkSentBytes);
}

std::optional<double> over(std::optional<double> perSecond, Seconds interval) {
    return perSecond ? std::optional(*perSecond * interval) : std::nullopt;
}

// Busiest first: processor, then memory, then id so that ties hold still.
std::set<std::string> busiest(const std::vector<ProcessGroup>& groups, std::size_t count) {
    struct Load {
        double cpu;
        std::uint64_t memory;
        const std::string* id;
        bool operator<(const Load& other) const {
            return std::tie(other.cpu, other.memory, *id) < std::tie(cpu, memory, *other.id);
        }
    };
    std::vector<Load> loads;
    loads.reserve(groups.size());
    for (const ProcessGroup& group : groups) {
        loads.push_back({group.totalCPU(), group.totalMemory(), &group.id});
    }
    const std::size_t kept = std::min(count, loads.size());
    std::partial_sort(loads.begin(), loads.begin() + static_cast<std::ptrdiff_t>(kept),
                      loads.end());
    std::set<std::string> ids;
    for (std::size_t i = 0; i < kept; ++i) {
        ids.insert(*loads[i].id);
    }
    return ids;
}

} // namespace

UsageCounters::Totals
UsageCounters::tickOf(const ProcessGroup& group, Seconds interval,
                      std::unordered_map<std::int32_t, ProcessMark>& marks) const {
    Totals tick;
    for (const LiveProcess& member : group.members) {
        const ProcessRecord& record = member.record;
        const auto last = lastMarks_.find(record.pid);
        const ProcessMark* before =
            last != lastMarks_.end() && last->second.started == record.started ? &last->second
                                                                              : nullptr;
        tick.cpuSeconds +=
            risen(record.cpuTimeNs, before ? std::optional(before->cpuTimeNs) : std::nullopt) /
            1e9;
        if (record.diskReadBytes) {
            add(tick.diskReadBytes,
                risen(*record.diskReadBytes, before ? before->diskReadBytes : std::nullopt));
        }
        if (record.diskWrittenBytes) {
            add(tick.diskWrittenBytes,
                risen(*record.diskWrittenBytes, before ? before->diskWrittenBytes : std::nullopt));
        }
        add(tick.networkReceivedBytes, over(member.rates.networkInPerSecond, interval));
        add(tick.networkSentBytes, over(member.rates.networkOutPerSecond, interval));
        marks[record.pid] = {record.started, record.cpuTimeNs, record.diskReadBytes,
                             record.diskWrittenBytes};
    }
    return tick;
}

void UsageCounters::record(const std::vector<ProcessGroup>& groups, const SystemSample& system,
                           Seconds interval, std::size_t shownApps) {
    shown_ = busiest(groups, shownApps);
    std::unordered_map<std::int32_t, ProcessMark> marks;
    marks.reserve(lastMarks_.size());
    std::map<std::string, Totals> apps;
    for (const ProcessGroup& group : groups) {
        const Totals tick = tickOf(group, interval, marks);
        const auto previous = apps_.find(group.id);
        Totals& total = apps[group.id];
        if (previous != apps_.end()) {
            total = previous->second;
        }
        add(total, tick);
        if (!shown_.contains(group.id)) {
            add(other_, tick);
        }
    }
    apps_ = std::move(apps);
    lastMarks_ = std::move(marks);

    system_.diskReadBytes += system.diskReadPerSecond * interval;
    system_.diskWrittenBytes += system.diskWritePerSecond * interval;
    system_.networkReceivedBytes += system.networkInPerSecond * interval;
    system_.networkSentBytes += system.networkOutPerSecond * interval;
}

} // namespace loadwarden
