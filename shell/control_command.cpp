#include "app/control/process_controller.h"
#include "app/grouping/running_apps.h"
#include "app/sampling/sampler.h"
#include "core/control/action_text.h"
#include "core/control/process_policy.h"
#include "core/text/duration_format.h"
#include "core/text/units_format.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/control_options.h"
#include "shell/control_target.h"
#include "shell/quit_signals.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <ostream>
#include <thread>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr Seconds tick = 1.0;

// The processes as apps, at the sampler's latest tick.
std::vector<ProcessGroup> groupsNow(Sampler& sampler, RunningApps& runningApps) {
    const Snapshot snapshot = sampler.sample(false, false, tick).get();
    return ProcessGrouper::group(snapshot.processes, runningApps.names(snapshot.processes),
                                 getpid());
}

// The policy's one-line reason, with who owns a process where that is the reason.
std::string refusal(ProcessAction action, const ProcessGroup& group) {
    if (auto refusal = ActionText::menuRefusal(group)) {
        return *refusal;
    }
    return action == ProcessAction::resume ? group.name + " is not paused"
                                           : group.name + " is paused already";
}

bool confirmForceQuit(const ProcessGroup& group, std::ostream& out) {
    out << "Force quit " << group.name << "? " << ActionText::forceQuitConfirmation(group)
        << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

std::string heldLine(const ProcessGroup& group, std::optional<double> limit, Seconds left) {
    std::string line = group.name + ": " +
                       (limit ? "limited to " + formatPercent(*limit) + " of a core" : "paused") +
                       ", using " + formatPercent(group.totalCPU());
    if (left < 1e9) {
        line += ", " + abbreviatedDuration(left) + " left";
    }
    return line + " (Ctrl-C to resume)";
}

// Holds the group as the controller left it until the time runs out, the
// group ends or a quit signal comes; the caller then continues it.
void hold(ProcessController& controller, const ProcessGroup& group, Sampler& sampler,
          RunningApps& runningApps, std::optional<Seconds> holdFor, QuitSignals& quitSignals,
          std::ostream& out) {
    const bool onTerminal = isatty(STDOUT_FILENO) == 1;
    Seconds left = holdFor.value_or(1e18);
    while (left > 0.0 && !quitSignals.wait(std::min(tick, left))) {
        left -= tick;
        const auto groups = groupsNow(sampler, runningApps);
        const auto current = std::find_if(groups.begin(), groups.end(), [&group](const auto& each) {
            return each.id == group.id;
        });
        if (current == groups.end()) {
            out << (onTerminal ? "\n" : "") << group.name << " has ended.\n";
            return;
        }
        controller.updateLimits(groups);
        if (onTerminal) {
            out << "\r\x1b[K" << heldLine(*current, controller.limitOf(group.id), left)
                << std::flush;
        }
    }
    if (onTerminal) {
        out << '\n';
    }
}

int act(ControlVerb verb, const ControlOptions& options, std::ostream& out, std::ostream& err) {
    const std::string command(controlCommandName(verb));
    // Caught before anything is stopped, so that an interrupt continues it.
    QuitSignals quitSignals;
    Sampler sampler(makePlatformBackend(), nullptr, currentDate);
    RunningApps runningApps;
    groupsNow(sampler, runningApps); // CPU use needs a reading to compare with
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const auto groups = groupsNow(sampler, runningApps);

    const ControlTarget target = resolveControlTarget(options.target, groups, getpid());
    if (!target.ambiguous.empty()) {
        err << "loadwarden " << command << ": several apps are called '" << options.target
            << "'; name one by its id or pid:\n";
        for (const ProcessGroup& group : target.ambiguous) {
            err << "  " << group.id << "  (pid " << group.leader.record.pid << ")\n";
        }
        return exitUsage;
    }
    if (!target.group) {
        err << "loadwarden " << command << ": no app or process '" << options.target << "'\n";
        return exitUsage;
    }
    const ProcessGroup& group = *target.group;
    const ProcessAction action = controlAction(verb);
    if (!ProcessPolicy::allows(action, group)) {
        err << "loadwarden " << command << ": " << refusal(action, group) << '\n';
        return exitRefused;
    }
    if (verb == ControlVerb::forceQuit && !options.yes) {
        if (isatty(STDIN_FILENO) != 1) {
            err << "loadwarden force-quit: not on a terminal, so --yes must confirm it\n";
            return exitUsage;
        }
        if (!confirmForceQuit(group, out)) {
            return exitFailure;
        }
    }

    ProcessController controller(SharedLedger(DefaultsStore()), systemApplications(), getpid());
    ProcessController::Result result = ProcessController::Result::done;
    switch (verb) {
    case ControlVerb::quit:
    case ControlVerb::end:
        result = controller.quit(group);
        break;
    case ControlVerb::forceQuit:
        result = controller.forceQuit(group);
        break;
    case ControlVerb::resume:
        result = controller.resume(group);
        break;
    case ControlVerb::pause:
        result = controller.pause(group);
        break;
    case ControlVerb::limit:
        result = controller.limit(group, *options.percent);
        break;
    }
    if (result == ProcessController::Result::notRecorded) {
        err << "loadwarden " << command
            << ": the list of paused processes couldn't be saved, so nothing was stopped\n";
        return exitFailure;
    }
    if (verb == ControlVerb::pause || verb == ControlVerb::limit) {
        out << (verb == ControlVerb::pause ? "Paused " : "Limited ") << group.name << ".\n"
            << std::flush;
        hold(controller, group, sampler, runningApps, options.holdFor, quitSignals, out);
        controller.resumeEverything();
        out << "Resumed " << group.name << ".\n";
    }
    return exitSuccess;
}

} // namespace

int runControlCommand(ControlVerb verb, const std::vector<std::string>& arguments,
                      std::ostream& out, std::ostream& err) {
    const std::string usage = controlUsage(verb);
    return runCommand(controlCommandName(verb), usage, parseControlOptions(verb, arguments), out,
                      err,
                      [&](const ControlOptions& options) { return act(verb, options, out, err); });
}

} // namespace loadwarden
