#include "app/grouping/running_apps.h"
#include "core/grouping/process_grouper.h"
#include "shell/apps_options.h"
#include "shell/apps_report.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/readings.h"

#include <ostream>
#include <unistd.h>

namespace loadwarden {

int runAppsCommand(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& err) {
    return runCommand(
        "apps", appsUsage, parseAppsOptions(arguments), out, err,
        [&out](const AppsOptions& options) {
            const Snapshot snapshot = takeReadings(2, options.interval, true).last;
            RunningApps runningApps;
            const auto rows =
                arrangeApps(ProcessGrouper::group(snapshot.processes,
                                                  runningApps.names(snapshot.processes), getpid()),
                            options);
            if (options.json) {
                printAppsJSON(rows, out);
            } else {
                printAppsReport(rows, out);
            }
        });
}

} // namespace loadwarden
