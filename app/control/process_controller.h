#pragma once

#include "app/control/applications.h"
#include "app/control/limit_runner.h"
#include "app/control/process_handle.h"
#include "app/control/shared_ledger.h"
#include "core/grouping/process_group.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// The only object that carries out the user's actions on processes. The
// policy is asked before every one; whatever is stopped is recorded in the
// shared ledger before the first stop, and continued when the program quits.
// Confined to the thread that made it.
class ProcessController {
public:
    enum class Result {
        done,
        refused,     // the policy does not allow it; nothing was signalled
        notRecorded, // the ledger could not be saved, so nothing was stopped
    };

    ProcessController(SharedLedger ledger, std::unique_ptr<Applications> applications,
                      std::int32_t myPID);
    ~ProcessController(); // resumes everything, as a quit does
    ProcessController(const ProcessController&) = delete;
    ProcessController& operator=(const ProcessController&) = delete;

    // Quit for an application (it may save first), End for other processes.
    Result quit(const ProcessGroup& group);
    Result forceQuit(const ProcessGroup& group);
    Result pause(const ProcessGroup& group);
    Result resume(const ProcessGroup& group);
    // percent: a share of one core, 100 being a whole core.
    Result limit(const ProcessGroup& group, double percent);
    void removeLimit(const std::string& groupID);
    // After each sample: each limited group's current members and CPU use;
    // a group that is gone has its limit removed.
    void updateLimits(const std::vector<ProcessGroup>& groups);
    std::optional<double> limitOf(const std::string& groupID) const;
    // Every limit, by group id.
    std::map<std::string, double> limits() const;

    // What copies of the program that ended left stopped, continued; at launch.
    std::vector<std::int32_t> continueOrphans();
    // Every limit removed and everything this copy stopped continued; at quit.
    void resumeEverything();

    const SharedLedger& ledger() const { return ledger_; }

private:
    // The processes of the group that the policy lets this copy signal, held
    // as the ones the sample read: a pid taken over since is left alone.
    std::vector<ProcessHandle> targets(const ProcessGroup& group) const;

    SharedLedger ledger_;
    std::unique_ptr<Applications> applications_;
    const std::int32_t myPID_;
    std::map<std::string, std::unique_ptr<LimitRunner>> limiters_;
};

} // namespace loadwarden
