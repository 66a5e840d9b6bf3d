#pragma once

#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"
#include "core/grouping/group_kind.h"
#include "core/measurement/system_sample.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace loadwarden {

// What the diagnosis of slowness needs to know about one app group.
struct ExplainerApp {
    std::string key; // the group id
    std::string name;
    GroupKind kind = GroupKind::app;
    double cpuPercent = 0.0; // of one core
    std::uint64_t memoryBytes = 0;
    std::optional<double> energyWatts;
    std::optional<double> diskBytesPerSecond;
    int helperCount = 0; // members besides the leader
    bool canQuit = false;
    bool canPause = false;
    bool notResponding = false;
    std::optional<double> leakGrowth; // bytes, when the leak test passes
    std::string processName;          // the leader's
    bool isSelf = false;

    bool operator==(const ExplainerApp&) const = default;
    auto fields() const {
        return std::tie(key, name, kind, cpuPercent, memoryBytes, energyWatts, diskBytesPerSecond,
                        helperCount, canQuit, canPause, notResponding, leakGrowth, processName,
                        isSelf);
    }
};

// One moment of the whole system, as the diagnosis sees it.
struct SystemPicture {
    SystemSample system;
    std::vector<ExplainerApp> apps;
    int heavyStartupItems = 0;

    bool operator==(const SystemPicture&) const = default;
    auto fields() const { return std::tie(system, apps, heavyStartupItems); }
};

// One reason the computer may feel slow, with the numbers its sentence quotes
// and the fix that addresses it.
struct Cause {
    enum class Kind {
        appNotResponding,
        appCPU,
        appMemory,
        appLeak,
        appEnergy,
        memoryPressure,
        thermal,
        lowDiskSpace,
        diskBusy,
        spotlightIndexing,
        backup,
        lowPowerMode,
        longUptime,
        startupItems,
    };

    struct Fix {
        enum class Kind {
            quit,
            forceQuit,
            pause,
            relaunch,
            openStorageSettings,
            openBatterySettings,
            showStartupApps,
        };
        Kind kind = Kind::quit;
        std::string key; // the app acted on; empty for the settings and startup fixes

        static Fix quit(std::string key) { return {Kind::quit, std::move(key)}; }
        static Fix forceQuit(std::string key) { return {Kind::forceQuit, std::move(key)}; }
        static Fix pause(std::string key) { return {Kind::pause, std::move(key)}; }
        static Fix relaunch(std::string key) { return {Kind::relaunch, std::move(key)}; }
        static Fix openStorageSettings() { return {Kind::openStorageSettings, {}}; }
        static Fix openBatterySettings() { return {Kind::openBatterySettings, {}}; }
        static Fix showStartupApps() { return {Kind::showStartupApps, {}}; }

        bool operator==(const Fix&) const = default;
        auto fields() const { return std::tie(kind, key); }
    };

    Kind kind = Kind::appCPU;
    double score = 0.0; // 0..100, higher is worse
    std::optional<std::string> appKey;
    std::optional<std::string> appName;
    double value = 0.0; // the main number of the sentence
    double extra = 0.0; // a second number
    bool pressureHigh = false;
    std::optional<Fix> fix;

    bool operator==(const Cause&) const = default;
    auto fields() const {
        return std::tie(kind, score, appKey, appName, value, extra, pressureHigh, fix);
    }
};

template <>
struct RawValues<Cause::Kind> {
    static constexpr RawValueTable<Cause::Kind, 14> table{{
        {Cause::Kind::appNotResponding, "appNotResponding"},
        {Cause::Kind::appCPU, "appCPU"},
        {Cause::Kind::appMemory, "appMemory"},
        {Cause::Kind::appLeak, "appLeak"},
        {Cause::Kind::appEnergy, "appEnergy"},
        {Cause::Kind::memoryPressure, "memoryPressure"},
        {Cause::Kind::thermal, "thermal"},
        {Cause::Kind::lowDiskSpace, "lowDiskSpace"},
        {Cause::Kind::diskBusy, "diskBusy"},
        {Cause::Kind::spotlightIndexing, "spotlightIndexing"},
        {Cause::Kind::backup, "backup"},
        {Cause::Kind::lowPowerMode, "lowPowerMode"},
        {Cause::Kind::longUptime, "longUptime"},
        {Cause::Kind::startupItems, "startupItems"},
    }};
};

template <>
struct RawValues<Cause::Fix::Kind> {
    static constexpr RawValueTable<Cause::Fix::Kind, 7> table{{
        {Cause::Fix::Kind::quit, "quit"},
        {Cause::Fix::Kind::forceQuit, "forceQuit"},
        {Cause::Fix::Kind::pause, "pause"},
        {Cause::Fix::Kind::relaunch, "relaunch"},
        {Cause::Fix::Kind::openStorageSettings, "openStorageSettings"},
        {Cause::Fix::Kind::openBatterySettings, "openBatterySettings"},
        {Cause::Fix::Kind::showStartupApps, "showStartupApps"},
    }};
};

namespace Explainer {

// The causes that explain slowness right now, worst first, at most maxCount.
// The program itself is never one of them.
std::vector<Cause> explain(const SystemPicture& picture, std::size_t maxCount);

} // namespace Explainer

} // namespace loadwarden
