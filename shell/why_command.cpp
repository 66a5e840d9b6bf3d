#include "app/grouping/running_apps.h"
#include "core/control/process_policy.h"
#include "core/diagnosis/diagnosis.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/readings.h"
#include "shell/why_options.h"
#include "shell/why_report.h"

#include <ostream>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::size_t busiestCount = 5;

WhyReport diagnose(const Snapshot& snapshot, std::size_t maxCount) {
    RunningApps runningApps;
    const auto groups =
        ProcessGrouper::group(snapshot.processes, runningApps.names(snapshot.processes), getpid());
    // One run has no memory history, so no leaks; the system reports no
    // unresponsive apps outside the window, and startup items are not counted here.
    const SystemPicture picture = Diagnosis::picture(snapshot.system, groups, {}, AlertEngine{}, 0);
    WhyReport report{
        Explainer::explain(picture, maxCount), Diagnosis::busiest(picture.apps, busiestCount), {}};
    for (const ProcessGroup& group : groups) {
        if (const auto reason = ProcessPolicy::reason(group)) {
            report.readOnlyReasons.emplace(group.id, *reason);
        }
    }
    return report;
}

} // namespace

int runWhyCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    return runCommand(
        "why", whyUsage, parseWhyOptions(arguments), out, err, [&out](const WhyOptions& options) {
            const WhyReport report = diagnose(takeReadings(2, options.interval, false).last,
                                              static_cast<std::size_t>(options.maxCount));
            if (options.json) {
                printWhyJSON(report, out);
            } else {
                printWhyReport(report, out);
            }
        });
}

} // namespace loadwarden
