#include "core/control/paused_ledger.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace loadwarden {

namespace {

bool isRunning(const PausedLedger::Process& process, const PausedLedger::StartTime& startTime) {
    const auto started = startTime(process.pid);
    return started && *started == process.started; // exactly: no tolerance for a reused pid
}

nlohmann::json processJSON(std::int32_t pid, Date started) {
    return {{"pid", pid}, {"started", started}};
}

} // namespace

void PausedLedger::record(const std::vector<std::int32_t>& pids, const StartTime& startTime,
                          const Process& holder) {
    for (const std::int32_t pid : pids) {
        if (const auto started = startTime(pid)) {
            entries.insert(Entry{.pid = pid, .started = *started, .holder = holder});
        }
    }
}

void PausedLedger::forget(const std::vector<std::int32_t>& pids) {
    std::erase_if(entries, [&pids](const Entry& entry) {
        return std::find(pids.begin(), pids.end(), entry.pid) != pids.end();
    });
}

std::vector<std::int32_t> PausedLedger::livePids(const StartTime& startTime) const {
    std::vector<std::int32_t> pids;
    for (const Entry& entry : entries) {
        if (isRunning(Process{entry.pid, entry.started}, startTime)) {
            pids.push_back(entry.pid);
        }
    }
    std::sort(pids.begin(), pids.end());
    pids.erase(std::unique(pids.begin(), pids.end()), pids.end());
    return pids;
}

PausedLedger PausedLedger::heldBy(const Process& holder) const {
    PausedLedger held;
    for (const Entry& entry : entries) {
        if (entry.holder == holder) {
            held.entries.insert(entry);
        }
    }
    return held;
}

PausedLedger PausedLedger::merged(const PausedLedger& stored, const PausedLedger& mine,
                                  const Process& holder) {
    PausedLedger result = mine;
    for (const Entry& entry : stored.entries) {
        if (entry.holder != holder) {
            result.entries.insert(entry); // a process held by another copy too keeps ours
        }
    }
    return result;
}

PausedLedger PausedLedger::orphans(const StartTime& startTime) const {
    PausedLedger orphaned;
    for (const Entry& entry : entries) {
        if (!entry.holder || !isRunning(*entry.holder, startTime)) {
            orphaned.entries.insert(entry);
        }
    }
    return orphaned;
}

std::string PausedLedger::encoded() const {
    nlohmann::json list = nlohmann::json::array();
    for (const Entry& entry : entries) {
        nlohmann::json item = processJSON(entry.pid, entry.started);
        if (entry.holder) {
            item["holder"] = processJSON(entry.holder->pid, entry.holder->started);
        }
        list.push_back(std::move(item));
    }
    return nlohmann::json{{"entries", std::move(list)}}.dump();
}

PausedLedger PausedLedger::decoded(const std::string& data) {
    return parsed(data).value_or(PausedLedger{});
}

std::optional<PausedLedger> PausedLedger::parsed(const std::string& data) {
    PausedLedger ledger;
    try {
        const auto json = nlohmann::json::parse(data);
        for (const auto& item : json.at("entries")) {
            Entry entry{.pid = item.at("pid").get<std::int32_t>(),
                        .started = item.at("started").get<Date>()};
            if (const auto holder = item.find("holder"); holder != item.end()) {
                entry.holder = Process{holder->at("pid").get<std::int32_t>(),
                                       holder->at("started").get<Date>()};
            }
            ledger.entries.insert(entry);
        }
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
    return ledger;
}

} // namespace loadwarden
