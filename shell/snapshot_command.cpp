#include "app/sampler.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/snapshot_options.h"
#include "shell/snapshot_report.h"

#include <chrono>
#include <ostream>
#include <thread>

namespace loadwarden {

namespace {

Snapshot takeSnapshot(const SnapshotOptions& options) {
    Sampler sampler;
    const auto first = std::chrono::steady_clock::now();
    const auto interval = std::chrono::duration<double>(options.interval);
    Snapshot snapshot;
    for (int tick = 0; tick < options.ticks; ++tick) {
        // Ticks keep to the schedule however long each one takes.
        std::this_thread::sleep_until(
            first +
            std::chrono::duration_cast<std::chrono::steady_clock::duration>(interval * tick));
        snapshot = sampler.sample(true, true, options.interval).get();
    }
    return snapshot;
}

} // namespace

int runSnapshotCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err) {
    const auto parsed = parseSnapshotOptions(arguments);
    if (const auto* message = std::get_if<std::string>(&parsed)) {
        err << "loadwarden snapshot: " << *message << '\n' << snapshotUsage;
        return exitUsage;
    }
    const auto& options = std::get<SnapshotOptions>(parsed);
    if (options.help) {
        out << snapshotUsage;
        return exitSuccess;
    }
    const Snapshot snapshot = takeSnapshot(options);
    if (options.json) {
        printSnapshotJSON(snapshot, out);
    } else {
        printSnapshotReport(snapshot, out);
    }
    return out ? exitSuccess : exitFailure;
}

} // namespace loadwarden
