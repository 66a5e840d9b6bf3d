#include "app/running_apps.h"
#include "app/sampler.h"
#include "core/diagnosis.h"
#include "core/process_policy.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/why_options.h"
#include "shell/why_report.h"

#include <chrono>
#include <ostream>
#include <thread>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::size_t busiestCount = 5;

// Rates need two readings; the second is the one explained.
Snapshot secondReading(Seconds interval) {
    Sampler sampler;
    sampler.sample(true, false, interval).get();
    std::this_thread::sleep_for(std::chrono::duration<double>(interval));
    return sampler.sample(true, false, interval).get();
}

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
    const auto parsed = parseWhyOptions(arguments);
    if (const auto* message = std::get_if<std::string>(&parsed)) {
        err << "loadwarden why: " << *message << '\n' << whyUsage;
        return exitUsage;
    }
    const auto& options = std::get<WhyOptions>(parsed);
    if (options.help) {
        out << whyUsage;
        return exitSuccess;
    }
    const WhyReport report =
        diagnose(secondReading(options.interval), static_cast<std::size_t>(options.maxCount));
    if (options.json) {
        printWhyJSON(report, out);
    } else {
        printWhyReport(report, out);
    }
    return out ? exitSuccess : exitFailure;
}

} // namespace loadwarden
