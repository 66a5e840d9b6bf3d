#include "app/running_apps.h"
#include "app/sampler.h"
#include "core/process_grouper.h"
#include "shell/apps_options.h"
#include "shell/apps_report.h"
#include "shell/command_line.h"
#include "shell/commands.h"

#include <chrono>
#include <ostream>
#include <thread>
#include <unistd.h>

namespace loadwarden {

namespace {

// Rates need two readings; the second is the one shown.
Snapshot secondReading(Seconds interval) {
    Sampler sampler;
    sampler.sample(true, true, interval).get();
    std::this_thread::sleep_for(std::chrono::duration<double>(interval));
    return sampler.sample(true, true, interval).get();
}

} // namespace

int runAppsCommand(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& err) {
    const auto parsed = parseAppsOptions(arguments);
    if (const auto* message = std::get_if<std::string>(&parsed)) {
        err << "loadwarden apps: " << *message << '\n' << appsUsage;
        return exitUsage;
    }
    const auto& options = std::get<AppsOptions>(parsed);
    if (options.help) {
        out << appsUsage;
        return exitSuccess;
    }
    const Snapshot snapshot = secondReading(options.interval);
    RunningApps runningApps;
    const auto rows = arrangeApps(
        ProcessGrouper::group(snapshot.processes, runningApps.names(snapshot.processes), getpid()),
        options);
    if (options.json) {
        printAppsJSON(rows, out);
    } else {
        printAppsReport(rows, out);
    }
    return out ? exitSuccess : exitFailure;
}

} // namespace loadwarden
