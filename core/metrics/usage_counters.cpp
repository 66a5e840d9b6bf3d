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
std::unordered_set<std::string> busiest(const std::vector<ProcessGroup>& groups,
                                        std::size_t count) {
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
    std::unordered_set<std::string> ids;
    for (std::size_t i = 0; i < kept; ++i) {
        ids.insert(*loads[i].id);
    }
    return ids;
}

} // namespace

const UsageCounters::Totals* UsageCounters::app(const std::string& groupID) const {
    const auto found = apps_.find(groupID);
    return found == apps_.end() ? nullptr : &found->second.totals;
}

UsageCounters::Totals UsageCounters::tickOf(const ProcessGroup& group, Seconds interval) {
    Totals tick;
    for (const LiveProcess& member : group.members) {
        const ProcessRecord& record = member.record;
        auto [mark, fresh] = marks_.try_emplace(record.pid);
        ProcessMark& last = mark->second;
        // Marks the last tick did not renew are gone, so an old one is the last tick's.
        const bool same = !fresh && last.started == record.started;
        tick.cpuSeconds +=
            risen(record.cpuTimeNs, same ? std::optional(last.cpuTimeNs) : std::nullopt) / 1e9;
        if (record.diskReadBytes) {
            add(tick.diskReadBytes,
                risen(*record.diskReadBytes, same ? last.diskReadBytes : std::nullopt));
        }
        if (record.diskWrittenBytes) {
            add(tick.diskWrittenBytes,
                risen(*record.diskWrittenBytes, same ? last.diskWrittenBytes : std::nullopt));
        }
        add(tick.networkReceivedBytes, over(member.rates.networkInPerSecond, interval));
        add(tick.networkSentBytes, over(member.rates.networkOutPerSecond, interval));
        last = {record.started, record.cpuTimeNs, record.diskReadBytes, record.diskWrittenBytes,
                tick_};
    }
    return tick;
}

void UsageCounters::record(const std::vector<ProcessGroup>& groups, const SystemSample& system,
                           Seconds interval, std::size_t shownApps) {
    ++tick_;
    shown_ = busiest(groups, shownApps);
    for (const ProcessGroup& group : groups) {
        const Totals tick = tickOf(group, interval);
        AppEntry& entry = apps_[group.id];
        entry.tick = tick_;
        add(entry.totals, tick);
        if (!shown_.contains(group.id)) {
            add(other_, tick);
        }
    }
    // What the tick did not see has gone.
    std::erase_if(marks_, [this](const auto& mark) { return mark.second.tick != tick_; });
    std::erase_if(apps_, [this](const auto& app) { return app.second.tick != tick_; });

    system_.diskReadBytes += system.diskReadPerSecond * interval;
    system_.diskWrittenBytes += system.diskWritePerSecond * interval;
    system_.networkReceivedBytes += system.networkInPerSecond * interval;
    system_.networkSentBytes += system.networkOutPerSecond * interval;
}

} // namespace loadwarden
