#include "core/control/action_text.h"

#include "core/control/process_policy.h"
#include "core/text/units_format.h"

namespace loadwarden {

namespace {

bool isApp(const ProcessGroup& group) {
    return group.kind == GroupKind::app;
}

} // namespace

std::string ActionText::quitTitle(const ProcessGroup& group) {
    return (isApp(group) ? "Quit " : "End ") + group.name;
}

std::string ActionText::pauseTitle(const ProcessGroup& group) {
    return "Pause " + group.name;
}

std::string ActionText::resumeTitle(const ProcessGroup& group) {
    return "Resume " + group.name;
}

std::string ActionText::limitTitle(const ProcessGroup& group, bool isLimited) {
    return (isLimited ? "Remove Limit on " : "Limit CPU of ") + group.name;
}

std::string ActionText::limitedMark(double percent) {
    return "Limited " + formatPercent(percent);
}

std::string ActionText::pausedMark() {
    return "Paused";
}

std::optional<std::string> ActionText::heldMark(const ProcessGroup& group,
                                               std::optional<double> limit) {
    if (limit) {
        return limitedMark(*limit);
    }
    if (group.isPaused()) {
        return pausedMark();
    }
    return std::nullopt;
}

std::string ActionText::heldSummary(std::size_t paused, std::size_t limited) {
    const auto apps = [](std::size_t count) {
        return std::to_string(count) + (count == 1 ? " app " : " apps ");
    };
    if (paused == 0 && limited == 0) {
        return {};
    }
    if (paused == 0) {
        return apps(limited) + "limited";
    }
    return apps(paused) + "paused" + (limited == 0 ? "" : " · " + std::to_string(limited) + " limited");
}

std::string ActionText::quitConfirmation(const ProcessGroup& group) {
    return isApp(group) ? "It’s asked to quit, so it can save first."
                        : "It’s asked to stop, so it can clean up first.";
}

std::string ActionText::forceQuitConfirmation(const ProcessGroup& group) {
    return isApp(group)
               ? "Unsaved changes in it will be lost. Try Quit first: it lets the app save."
               : "Anything it hasn’t saved will be lost. Try End first: it lets the process "
                 "clean up.";
}

std::string ActionText::singleProcessHeader(const ProcessGroup& group) {
    return "This process only: " + group.name;
}

std::string ActionText::pauseHelp() {
    return "Stop it using the processor until you resume it";
}

std::string ActionText::resumeHelp() {
    return "Let it use the processor freely again";
}

std::string ActionText::selfHelp() {
    return "This is Loadwarden. It never acts on itself or counts itself as a slowdown; Details "
           "shows what it uses.";
}

std::optional<std::string> ActionText::menuRefusal(const ProcessGroup& group) {
    if (!group.isSelf && !group.leader.record.isOwn) {
        return "Another user’s process: read-only";
    }
    if (const auto reason = ProcessPolicy::reason(group)) {
        return std::string(*reason);
    }
    if (ProcessPolicy::hasEnded(group)) {
        return "Ended: waiting for the process that started it";
    }
    return std::nullopt;
}

} // namespace loadwarden
