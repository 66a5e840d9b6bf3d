#include "app/control/process_controller.h"

#include "core/control/process_policy.h"

#include <algorithm>
#include <csignal>

namespace loadwarden {

ProcessController::ProcessController(SharedLedger ledger,
                                     std::unique_ptr<Applications> applications, std::int32_t myPID)
    : ledger_(std::move(ledger)), applications_(std::move(applications)), myPID_(myPID) {}

ProcessController::~ProcessController() {
    resumeEverything();
}

std::vector<ProcessHandle> ProcessController::targets(const ProcessGroup& group) const {
    std::vector<ProcessHandle> handles;
    for (const std::int32_t pid : ProcessPolicy::signalTargets(group, myPID_)) {
        const auto member =
            std::find_if(group.members.begin(), group.members.end(),
                         [pid](const LiveProcess& each) { return each.record.pid == pid; });
        const Date started =
            member != group.members.end() ? member->record.started : group.leader.record.started;
        if (auto handle = ProcessHandle::open(pid, started)) {
            handles.push_back(std::move(*handle));
        }
    }
    return handles;
}

ProcessController::Result ProcessController::quit(const ProcessGroup& group) {
    if (!ProcessPolicy::allows(ProcessAction::quit, group)) {
        return Result::refused;
    }
    removeLimit(group.id);
    const std::int32_t leader = group.leader.record.pid;
    const auto all = targets(group);
    if (applications_->isRegularApp(leader)) {
        // A stopped app cannot answer the request to quit.
        sendEach(SIGCONT, all);
        ledger_.forget(pidsOf(all));
        applications_->terminate(leader);
        return Result::done;
    }
    // Only the leader is ended; the rest of the group is the leader's to end.
    const auto held = std::find_if(all.begin(), all.end(), [leader](const ProcessHandle& each) {
        return each.pid() == leader;
    });
    if (held != all.end()) {
        held->send(SIGCONT);
        held->send(SIGTERM);
    }
    return Result::done;
}

ProcessController::Result ProcessController::forceQuit(const ProcessGroup& group) {
    if (!ProcessPolicy::allows(ProcessAction::forceQuit, group)) {
        return Result::refused;
    }
    removeLimit(group.id);
    const auto all = targets(group);
    if (!applications_->forceTerminate(group.leader.record.pid)) {
        sendEach(SIGKILL, all);
    }
    ledger_.forget(pidsOf(all));
    return Result::done;
}

ProcessController::Result ProcessController::pause(const ProcessGroup& group) {
    if (!ProcessPolicy::allows(ProcessAction::pause, group)) {
        return Result::refused;
    }
    removeLimit(group.id);
    const auto all = targets(group);
    // Recorded first: a crash between the two must never leave an unrecorded stop.
    if (!ledger_.record(pidsOf(all))) {
        return Result::notRecorded;
    }
    sendEach(SIGSTOP, all);
    return Result::done;
}

ProcessController::Result ProcessController::resume(const ProcessGroup& group) {
    if (!ProcessPolicy::offers(ProcessAction::resume, group, limiters_.contains(group.id))) {
        return Result::refused;
    }
    removeLimit(group.id);
    const auto all = targets(group);
    sendEach(SIGCONT, all);
    ledger_.forget(pidsOf(all));
    return Result::done;
}

ProcessController::Result ProcessController::limit(const ProcessGroup& group, double percent) {
    if (!ProcessPolicy::allows(ProcessAction::limit, group)) {
        return Result::refused;
    }
    removeLimit(group.id);
    auto all = targets(group);
    if (all.empty()) {
        return Result::done;
    }
    // The limit stops them many times a second; a crash must not leave them so.
    if (!ledger_.record(pidsOf(all))) {
        return Result::notRecorded;
    }
    auto runner = std::make_unique<LimitRunner>(std::move(all), percent, group.totalCPU());
    runner->start();
    limiters_.insert_or_assign(group.id, std::move(runner));
    return Result::done;
}

void ProcessController::removeLimit(const std::string& groupID) {
    const auto found = limiters_.find(groupID);
    if (found == limiters_.end()) {
        return;
    }
    const std::unique_ptr<LimitRunner> runner = std::move(found->second);
    limiters_.erase(found);
    // stop() waits for the thread's last period, a last stop included.
    const auto held = runner->stop();
    sendEach(SIGCONT, held);
    ledger_.forget(pidsOf(held));
}

void ProcessController::updateLimits(const std::vector<ProcessGroup>& groups) {
    std::vector<std::string> gone;
    for (const auto& [id, runner] : limiters_) {
        const auto group = std::find_if(groups.begin(), groups.end(),
                                        [&id](const ProcessGroup& each) { return each.id == id; });
        if (group == groups.end()) {
            gone.push_back(id);
            continue;
        }
        auto all = targets(*group);
        // Helpers started since the limit began are recorded before they are stopped.
        if (ledger_.record(pidsOf(all))) {
            runner->update(std::move(all), group->totalCPU());
        }
    }
    for (const auto& id : gone) {
        removeLimit(id);
    }
}

std::optional<double> ProcessController::limitOf(const std::string& groupID) const {
    const auto found = limiters_.find(groupID);
    if (found == limiters_.end()) {
        return std::nullopt;
    }
    return found->second->limit();
}

std::map<std::string, double> ProcessController::limits() const {
    std::map<std::string, double> limits;
    for (const auto& [groupID, limiter] : limiters_) {
        limits.emplace(groupID, limiter->limit());
    }
    return limits;
}

std::vector<std::int32_t> ProcessController::continueOrphans() {
    return ledger_.releaseOrphans();
}

void ProcessController::resumeEverything() {
    while (!limiters_.empty()) {
        removeLimit(limiters_.begin()->first);
    }
    sendEach(SIGCONT, ledger_.liveProcesses());
    std::vector<std::int32_t> everything;
    for (const auto& entry : ledger_.mine().entries) {
        everything.push_back(entry.pid);
    }
    ledger_.forget(everything);
}

} // namespace loadwarden
