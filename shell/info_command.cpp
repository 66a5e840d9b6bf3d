#include "app/codesign/code_info_cache.h"
#include "app/details/open_files.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/info_options.h"
#include "shell/info_report.h"
#include "shell/readings.h"

#include <algorithm>
#include <ostream>

namespace loadwarden {

int runInfoCommand(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& err) {
    return runCommand(
        "info", infoUsage, parseInfoOptions(arguments), out, err, [&](const InfoOptions& options) {
            const auto processes = takeReadings(2, 1.0, false).last.processes;
            const auto found =
                std::ranges::find_if(processes, [&options](const LiveProcess& process) {
                    return process.record.pid == options.pid;
                });
            if (found == processes.end()) {
                err << "loadwarden info: no process has pid " << options.pid << '\n';
                return exitFailure;
            }
            const InfoReport report{
                .process = *found,
                .code = found->record.path.empty() ? CodeInfo{} : readCodeInfo(found->record.path),
                .files = openFiles(options.pid)};
            if (options.json) {
                printInfoJSON(report, out);
            } else {
                printInfoReport(report, out);
            }
            return out ? exitSuccess : exitFailure;
        });
}

} // namespace loadwarden
