#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/readings.h"
#include "shell/snapshot_options.h"
#include "shell/snapshot_report.h"

#include <ostream>

namespace loadwarden {

int runSnapshotCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err) {
    return runCommand("snapshot", snapshotUsage, parseSnapshotOptions(arguments), out, err,
                      [&out](const SnapshotOptions& options) {
                          const Readings readings =
                              takeReadings(options.ticks, options.interval, true);
                          if (options.json) {
                              printSnapshotJSON(readings.last, out);
                          } else {
                              printSnapshotReport(readings.last, readings.networkCoverageNote, out);
                          }
                      });
}

} // namespace loadwarden
