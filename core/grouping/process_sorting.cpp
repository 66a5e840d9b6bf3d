#include "core/grouping/process_grouper.h"
#include "core/text/natural_order.h"

#include <algorithm>
#include <numeric>

namespace loadwarden {

namespace {

// What one row is sorted by, worked out once per row rather than once per
// comparison: group totals are sums over the members.
struct SortKey {
    std::string_view name;
    std::uint64_t memory = 0;
    double figure = 0.0; // the column's figure for the other numeric columns
};

// An absent figure sorts below every present one, zero included.
double orBelowZero(std::optional<double> figure) {
    return figure.value_or(-1.0);
}

SortKey memberKey(const LiveProcess& member, ProcessColumn column) {
    SortKey key{.name = member.record.name, .memory = member.record.memoryBytes};
    const ProcessRates& rates = member.rates;
    switch (column) {
    case ProcessColumn::cpu:
        key.figure = rates.cpuPercent;
        break;
    case ProcessColumn::energy:
        key.figure = orBelowZero(rates.energyWatts);
        break;
    case ProcessColumn::disk:
        key.figure = orBelowZero(rates.diskBytesPerSecond);
        break;
    case ProcessColumn::network:
        key.figure = orBelowZero(networkTotal(rates));
        break;
    case ProcessColumn::gpu:
        key.figure = orBelowZero(rates.gpuPercent);
        break;
    case ProcessColumn::name:
    case ProcessColumn::memory:
        break;
    }
    return key;
}

SortKey groupKey(const ProcessGroup& group, ProcessColumn column) {
    SortKey key{.name = group.name};
    switch (column) {
    case ProcessColumn::cpu:
        key.figure = group.totalCPU();
        break;
    case ProcessColumn::memory:
        key.memory = group.totalMemory();
        break;
    case ProcessColumn::energy:
        key.figure = orBelowZero(group.totalEnergy());
        break;
    case ProcessColumn::disk:
        key.figure = orBelowZero(group.totalDisk());
        break;
    case ProcessColumn::network:
        key.figure = orBelowZero(group.totalNetwork());
        break;
    case ProcessColumn::gpu:
        key.figure = orBelowZero(group.totalGPU());
        break;
    case ProcessColumn::name:
        break;
    }
    return key;
}

std::weak_ordering compareByColumn(const SortKey& a, const SortKey& b, ProcessColumn column) {
    switch (column) {
    case ProcessColumn::name:
        return naturalCompare(a.name, b.name);
    case ProcessColumn::memory:
        return a.memory <=> b.memory;
    default:
        if (a.figure < b.figure) {
            return std::weak_ordering::less;
        }
        return b.figure < a.figure ? std::weak_ordering::greater : std::weak_ordering::equivalent;
    }
}

// The column in the chosen direction; ties by name, always ascending.
bool comesBefore(const SortKey& a, const SortKey& b, ProcessColumn column, bool ascending) {
    if (const auto order = compareByColumn(a, b, column); order != 0) {
        return ascending ? order < 0 : order > 0;
    }
    return naturalCompare(a.name, b.name) < 0;
}

std::vector<std::size_t> indices(std::size_t count) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

} // namespace

std::vector<ProcessGroup> ProcessGrouper::sortGroups(std::vector<ProcessGroup> groups,
                                                     ProcessColumn column, bool ascending) {
    std::vector<SortKey> keys;
    keys.reserve(groups.size());
    for (const ProcessGroup& group : groups) {
        keys.push_back(groupKey(group, column));
    }
    auto order = indices(groups.size());
    // Stable, so that groups of equal names keep their order.
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (groups[a].kind != groups[b].kind) {
            return groups[a].kind < groups[b].kind; // the sections never mix
        }
        return comesBefore(keys[a], keys[b], column, ascending);
    });
    std::vector<ProcessGroup> sorted;
    sorted.reserve(groups.size());
    for (const std::size_t index : order) {
        sorted.push_back(std::move(groups[index]));
    }
    return sorted;
}

std::vector<LiveProcess> ProcessGrouper::sortMembers(const ProcessGroup& group,
                                                     ProcessColumn column, bool ascending) {
    const std::vector<LiveProcess>& members = group.members;
    std::vector<SortKey> keys;
    keys.reserve(members.size());
    for (const LiveProcess& member : members) {
        keys.push_back(memberKey(member, column));
    }
    auto order = indices(members.size());
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (comesBefore(keys[a], keys[b], column, ascending)) {
            return true;
        }
        if (comesBefore(keys[b], keys[a], column, ascending)) {
            return false;
        }
        return members[a].record.pid < members[b].record.pid;
    });
    std::vector<LiveProcess> sorted;
    sorted.reserve(members.size());
    for (const std::size_t index : order) {
        sorted.push_back(members[index]);
    }
    return sorted;
}

} // namespace loadwarden
