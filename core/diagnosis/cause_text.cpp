#include "core/diagnosis/cause_text.h"

#include "core/text/platform_wording.h"
#include "core/text/units_format.h"

#include <cmath>
#include <cstdint>

namespace loadwarden {

namespace {

using Kind = Cause::Kind;

std::string name(const Cause& cause) {
    return cause.appName.value_or("");
}

// "Mail is using", "Mail and its helper process are using", "Mail and its 3 helper processes are
// using".
std::string subjectUsing(const Cause& cause) {
    const auto helpers = std::isfinite(cause.extra) ? static_cast<std::int64_t>(cause.extra) : 0;
    if (helpers <= 0) {
        return name(cause) + " is using ";
    }
    if (helpers == 1) {
        return name(cause) + " and its helper process are using ";
    }
    return name(cause) + " and its " + std::to_string(helpers) + " helper processes are using ";
}

std::string appCPUDetail(const Cause& cause) {
    const std::string burden(
        onThisPlatform("That leaves less for everything else and makes the Mac warm. ",
                       "That leaves less for everything else and makes the computer warm. "));
    if (!cause.fix) {
        return burden + std::string(onThisPlatform(
                            "It’s part of macOS or another user’s, so Loadwarden leaves it alone; "
                            "it usually settles on its own.",
                            "It’s part of the system or another user’s, so Loadwarden leaves it "
                            "alone; it usually settles on its own."));
    }
    if (cause.fix->kind == Cause::Fix::Kind::pause) {
        return burden + "Pausing it stops it at once; resume it when you need it.";
    }
    return burden + "Quitting it gives the processor back.";
}

} // namespace

std::string CauseText::title(const Cause& cause) {
    switch (cause.kind) {
    case Kind::appNotResponding:
        return name(cause) + " isn’t responding.";
    case Kind::appCPU:
        return subjectUsing(cause) + formatPercent(cause.value) + " of a processor core.";
    case Kind::appMemory:
        return subjectUsing(cause) + formatByteAmount(cause.value) +
               (cause.pressureHigh
                    ? std::string(onThisPlatform(
                          " of memory; memory is short, so macOS is swapping to disk.",
                          " of memory; memory is short, so the system is swapping to disk."))
                    : " of memory.");
    case Kind::appLeak:
        return name(cause) + "’s memory keeps growing: up " + formatByteAmount(cause.extra) +
               " to " + formatByteAmount(cause.value) + ".";
    case Kind::appEnergy:
        return name(cause) + " is drawing about " + formatWatts(cause.value) + " on battery.";
    case Kind::memoryPressure:
        if (cause.value >= 1) {
            return std::string(onThisPlatform("Memory is short, so macOS is swapping (",
                                              "Memory is short, so the system is swapping (")) +
                   formatByteAmount(cause.value) + " on disk).";
        }
        return "Memory is short.";
    case Kind::thermal:
        return std::string(
            onThisPlatform("Your Mac is hot, so macOS is slowing the processor to cool it.",
                           "Your computer is hot, so the system is slowing the processor to "
                           "cool it."));
    case Kind::lowDiskSpace:
        return "The startup disk is almost full: " + formatByteAmount(cause.value) + " free.";
    case Kind::diskBusy:
        return "The disk is very busy (" + formatBytesPerSecond(cause.value) + ").";
    case Kind::spotlightIndexing:
        return "Spotlight is indexing your files.";
    case Kind::backup:
        return "Time Machine is backing up.";
    case Kind::lowPowerMode:
        return "Low Power Mode is on, so the processor runs slower.";
    case Kind::longUptime:
        return std::string(
                   onThisPlatform("Your Mac has been on for ", "Your computer has been on for ")) +
               formatCount(cause.value, "day") + " and has " + formatByteAmount(cause.extra) +
               " in swap.";
    case Kind::startupItems:
        return formatCount(cause.value, "heavy item") +
               std::string(onThisPlatform(" start with your Mac.", " start with your computer."));
    }
    return {};
}

std::string CauseText::detail(const Cause& cause) {
    switch (cause.kind) {
    case Kind::appNotResponding:
        return std::string(onThisPlatform("macOS reports", "The system reports")) +
               " it has stopped answering. Force quitting it frees whatever it’s holding; unsaved "
               "changes in it are lost.";
    case Kind::appCPU:
        return appCPUDetail(cause);
    case Kind::appMemory:
        if (cause.pressureHigh) {
            return "Swapping is the slowdown you feel: apps wait while memory is written to and "
                   "read from the disk. Quitting it, or closing its windows and tabs, gives that "
                   "memory back.";
        }
        return std::string(onThisPlatform("That’s a big share of this Mac’s memory.",
                                          "That’s a big share of this computer’s memory.")) +
               " Closing windows or tabs you aren’t using in it helps.";
    case Kind::appLeak:
        return "Steady growth that never comes back down usually means a leak. Quitting and "
               "opening it again resets it.";
    case Kind::appEnergy:
        return "It’s the biggest drain on your battery right now. Pausing it while you don’t need "
               "it saves power.";
    case Kind::memoryPressure:
        if (cause.appName) {
            return "No single app is to blame. The biggest is " + *cause.appName + " (" +
                   formatByteAmount(cause.extra) +
                   "); quitting apps you aren’t using gives memory back.";
        }
        return "Quit apps you aren’t using to give memory back.";
    case Kind::thermal:
        return "Give it air (not on a bed or a lap), and pause or quit the busiest apps until it "
               "cools.";
    case Kind::lowDiskSpace:
        return std::string(onThisPlatform(
            "macOS needs free space for swap and updates. Storage settings shows what’s using it.",
            "The system needs free space for swap and updates. Removing files you no longer need "
            "gives it back."));
    case Kind::diskBusy:
        return "Something is reading or writing a lot; apps that need the disk wait their turn. "
               "The Disk column in Processes shows who.";
    case Kind::spotlightIndexing:
        return std::string(onThisPlatform(
            "It happens after updates or when lots of files change, and it finishes on its own. "
            "Leave the Mac on and it will settle down.",
            "It happens after updates or when lots of files change, and it finishes on its own. "
            "Leave the computer on and it will settle down."));
    case Kind::backup:
        return "Backups use the disk and some processor time for a while, then stop on their own.";
    case Kind::lowPowerMode:
        return std::string(
            onThisPlatform("Turn it off in Battery settings when you need full speed.",
                           "Turn it off in the power settings when you need full speed."));
    case Kind::longUptime:
        return "Restarting clears swap and resets apps that have grown over time. Save your work "
               "first.";
    case Kind::startupItems:
        return "They run all the time in the background. Startup apps shows them and their "
               "impact.";
    }
    return {};
}

std::string_view CauseText::symbol(Cause::Kind kind) {
    switch (kind) {
    case Kind::appNotResponding:
        return "hourglass";
    case Kind::appCPU:
        return "cpu";
    case Kind::appMemory:
    case Kind::memoryPressure:
        return "memorychip";
    case Kind::appLeak:
        return "chart.line.uptrend.xyaxis";
    case Kind::appEnergy:
        return "bolt.batteryblock";
    case Kind::thermal:
        return "thermometer.high";
    case Kind::lowDiskSpace:
        return "internaldrive";
    case Kind::diskBusy:
        return "arrow.up.arrow.down.circle";
    case Kind::spotlightIndexing:
        return "magnifyingglass";
    case Kind::backup:
        return "clock.arrow.circlepath";
    case Kind::lowPowerMode:
        return "battery.25percent";
    case Kind::longUptime:
        return "arrow.clockwise.circle";
    case Kind::startupItems:
        return "power.circle";
    }
    return {};
}

std::string CauseText::fixLabel(const Cause::Fix& fix, std::string_view appName) {
    const std::string subject(appName);
    switch (fix.kind) {
    case Cause::Fix::Kind::quit:
        return "Quit " + subject;
    case Cause::Fix::Kind::forceQuit:
        return "Force Quit " + subject;
    case Cause::Fix::Kind::pause:
        return "Pause " + subject;
    case Cause::Fix::Kind::relaunch:
        return "Quit and Reopen " + subject;
    case Cause::Fix::Kind::openStorageSettings:
        return "Open Storage Settings";
    case Cause::Fix::Kind::openBatterySettings:
        return "Open Battery Settings";
    case Cause::Fix::Kind::showStartupApps:
        return "Show Startup Apps";
    }
    return {};
}

std::string_view CauseText::question() {
    return onThisPlatform("Why is my Mac slow?", "Why is my computer slow?");
}

std::string_view CauseText::allClearTitle() {
    return onThisPlatform("Nothing is slowing your Mac right now.",
                          "Nothing is slowing your computer right now.");
}

std::string_view CauseText::allClearSentence() {
    return "Processor, memory, disk and heat all look fine. If something still feels slow, it may "
           "be one app: its row in Processes shows what it’s using.";
}

std::string_view CauseText::busiestHeading() {
    return "Busiest right now";
}

} // namespace loadwarden
