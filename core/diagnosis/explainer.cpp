#include "core/diagnosis/explainer.h"

#include "core/text/platform_wording.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

namespace loadwarden {

namespace {

using Fix = Cause::Fix;

constexpr double gigabyte = 1e9;
constexpr double day = 86400;

constexpr std::array<std::string_view, 6> spotlightProcesses{
    "mds", "mds_stores", "mdworker", "mdworker_shared", "mdsync", "corespotlightd"};
constexpr std::array<std::string_view, 2> backupProcesses{"backupd", "backupd-helper"};

double clamp(double score) {
    return std::clamp(score, 0.0, 100.0);
}

template <std::size_t N>
bool isOneOf(const std::string& name, const std::array<std::string_view, N>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::optional<Fix> systemSettingsFix(Fix fix) {
    return hasSystemSettings ? std::optional(std::move(fix)) : std::nullopt;
}

// Figures of the whole system that several rules share.
struct Situation {
    double cores;
    double totalMemory;
    double swap;
    bool pressureHigh;
    bool onBattery;
};

Situation situationOf(const SystemSample& system) {
    const double total = static_cast<double>(system.memory.total);
    const double swap = static_cast<double>(system.memory.swapUsed);
    return {.cores = static_cast<double>(std::max<std::size_t>(system.coreUsage.size(), 1)),
            .totalMemory = total,
            .swap = swap,
            .pressureHigh =
                system.memory.pressure != MemoryPressure::normal || (total > 0 && swap > total / 4),
            .onBattery = system.battery && system.battery->onBattery};
}

class CauseList {
public:
    explicit CauseList(const Situation& situation) : situation_(situation) {}

    void explainApp(const ExplainerApp& app) {
        if (app.notResponding) {
            add(appCause(Cause::Kind::appNotResponding, 92, app, 0, 0,
                         app.canQuit ? std::optional(Fix::forceQuit(app.key)) : std::nullopt));
        }
        // Spotlight and Time Machine are the system at work, not an app to blame.
        if (isOneOf(app.processName, spotlightProcesses)) {
            if (app.cpuPercent >= 40) {
                add({.kind = Cause::Kind::spotlightIndexing,
                     .score = clamp(std::min(app.cpuPercent * 0.125, 25.0) + 30),
                     .value = app.cpuPercent});
            }
            return;
        }
        if (isOneOf(app.processName, backupProcesses)) {
            const double disk = app.diskBytesPerSecond.value_or(0);
            if (app.cpuPercent >= 20 || disk > 20'000'000) {
                add({.kind = Cause::Kind::backup, .score = 32, .value = disk});
            }
            return;
        }
        explainCPU(app);
        if (app.leakGrowth) {
            explainLeak(app, *app.leakGrowth);
        } else {
            explainMemory(app);
        }
        explainEnergy(app);
    }

    void explainSystem(const SystemSample& system, const std::vector<ExplainerApp>& apps,
                       int heavyStartupItems) {
        explainMemoryPressure(system.memory.pressure, apps);
        if (system.thermal == ThermalLevel::serious || system.thermal == ThermalLevel::critical) {
            const bool critical = system.thermal == ThermalLevel::critical;
            add({.kind = Cause::Kind::thermal,
                 .score = critical ? 95.0 : 72.0,
                 .value = critical ? 3.0 : 2.0});
        }
        explainDiskSpace(system.diskFree, system.diskTotal);
        const double diskRate = system.diskReadPerSecond + system.diskWritePerSecond;
        if (diskRate >= 150'000'000) {
            add({.kind = Cause::Kind::diskBusy,
                 .score = std::min(std::min(diskRate / 50'000'000, 20.0) + 30, 100.0),
                 .value = diskRate});
        }
        if (system.lowPowerMode) {
            add({.kind = Cause::Kind::lowPowerMode,
                 .score = 40,
                 .fix = systemSettingsFix(Fix::openBatterySettings())});
        }
        if (system.uptime >= 14 * day && situation_.swap >= 2 * gigabyte) {
            add({.kind = Cause::Kind::longUptime,
                 .score = 34,
                 .value = system.uptime / day,
                 .extra = situation_.swap});
        }
        if (heavyStartupItems > 2) {
            add({.kind = Cause::Kind::startupItems,
                 .score = std::min(heavyStartupItems, 10) + 20.0,
                 .value = static_cast<double>(heavyStartupItems),
                 .fix = Fix::showStartupApps()});
        }
    }

    std::vector<Cause> ranked(std::size_t maxCount) && {
        std::stable_sort(causes_.begin(), causes_.end(),
                         [](const Cause& a, const Cause& b) { return a.score > b.score; });
        std::vector<Cause> kept;
        std::set<std::pair<Cause::Kind, std::optional<std::string>>> seen;
        for (Cause& cause : causes_) {
            if (kept.size() == maxCount) {
                break;
            }
            if (seen.emplace(cause.kind, cause.appKey).second) {
                kept.push_back(std::move(cause));
            }
        }
        return kept;
    }

private:
    static Cause appCause(Cause::Kind kind, double score, const ExplainerApp& app, double value,
                          double extra, std::optional<Fix> fix) {
        return {.kind = kind,
                .score = clamp(score),
                .appKey = app.key,
                .appName = app.name,
                .value = value,
                .extra = extra,
                .fix = std::move(fix)};
    }

    static std::optional<Fix> quitFix(const ExplainerApp& app) {
        return app.canQuit ? std::optional(Fix::quit(app.key)) : std::nullopt;
    }

    static std::optional<Fix> pauseOrQuitFix(const ExplainerApp& app) {
        return app.canPause ? std::optional(Fix::pause(app.key)) : quitFix(app);
    }

    void explainCPU(const ExplainerApp& app) {
        if (app.cpuPercent < 50) {
            return;
        }
        // Heavy on one core, and heavier still as a share of the whole processor.
        const double s = app.cpuPercent * 0.15 + app.cpuPercent / (situation_.cores * 100) * 60;
        add(appCause(Cause::Kind::appCPU, s >= 55 ? 90 : s + 35, app, app.cpuPercent,
                     app.helperCount, pauseOrQuitFix(app)));
    }

    void explainMemory(const ExplainerApp& app) {
        const double total = situation_.totalMemory;
        const auto memory = static_cast<double>(app.memoryBytes);
        if (!(total > 0) || (memory / total < 0.12 && memory < 3 * gigabyte)) {
            return;
        }
        const double m = memory / total * 150;
        const double score = (m >= 45 ? 70 : m + 25) + (situation_.pressureHigh ? 20 : 0);
        Cause cause =
            appCause(Cause::Kind::appMemory, score, app, memory, app.helperCount, quitFix(app));
        cause.pressureHigh = situation_.pressureHigh;
        add(std::move(cause));
    }

    void explainLeak(const ExplainerApp& app, double growth) {
        const double g = growth / gigabyte * 10;
        Cause cause = appCause(Cause::Kind::appLeak, g >= 35 ? 85 : g + 50, app,
                               static_cast<double>(app.memoryBytes), growth,
                               app.canQuit ? std::optional(Fix::relaunch(app.key)) : std::nullopt);
        cause.pressureHigh = situation_.pressureHigh;
        add(std::move(cause));
    }

    void explainEnergy(const ExplainerApp& app) {
        if (!app.energyWatts || *app.energyWatts < 4 || !situation_.onBattery) {
            return;
        }
        const double doubled = 2 * *app.energyWatts;
        add(appCause(Cause::Kind::appEnergy, doubled >= 30 ? 60 : doubled + 30, app,
                     *app.energyWatts, 0, pauseOrQuitFix(app)));
    }

    void explainMemoryPressure(MemoryPressure pressure, const std::vector<ExplainerApp>& apps) {
        // An app that was blamed while memory was short explains it better.
        const bool explained = std::any_of(causes_.begin(), causes_.end(), [](const Cause& c) {
            return (c.kind == Cause::Kind::appMemory || c.kind == Cause::Kind::appLeak) &&
                   c.pressureHigh;
        });
        if (!situation_.pressureHigh || explained) {
            return;
        }
        Cause cause{.kind = Cause::Kind::memoryPressure,
                    .score = pressure == MemoryPressure::critical ? 85.0 : 60.0,
                    .value = situation_.swap,
                    .pressureHigh = true};
        const ExplainerApp* biggest = nullptr;
        for (const ExplainerApp& app : apps) {
            if (app.canQuit && (!biggest || app.memoryBytes > biggest->memoryBytes)) {
                biggest = &app;
            }
        }
        if (biggest) {
            cause.appKey = biggest->key;
            cause.appName = biggest->name;
            cause.extra = static_cast<double>(biggest->memoryBytes);
            cause.fix = Fix::quit(biggest->key);
        }
        add(std::move(cause));
    }

    void explainDiskSpace(std::optional<std::uint64_t> freeBytes,
                          std::optional<std::uint64_t> totalBytes) {
        if (!freeBytes || !totalBytes || *totalBytes == 0) {
            return;
        }
        const auto free = static_cast<double>(*freeBytes);
        const double share = free / static_cast<double>(*totalBytes);
        double score = 0;
        if (free < 5 * gigabyte || share < 0.03) {
            score = 85;
        } else if (free < 15 * gigabyte || share < 0.08) {
            score = 48;
        } else {
            return;
        }
        add({.kind = Cause::Kind::lowDiskSpace,
             .score = score,
             .value = free,
             .fix = systemSettingsFix(Fix::openStorageSettings())});
    }

    void add(Cause cause) { causes_.push_back(std::move(cause)); }

    Situation situation_;
    std::vector<Cause> causes_;
};

} // namespace

std::vector<Cause> Explainer::explain(const SystemPicture& picture, std::size_t maxCount) {
    // The program never counts itself as a slowdown.
    std::vector<ExplainerApp> apps;
    std::copy_if(picture.apps.begin(), picture.apps.end(), std::back_inserter(apps),
                 [](const ExplainerApp& app) { return !app.isSelf; });
    CauseList causes(situationOf(picture.system));
    for (const ExplainerApp& app : apps) {
        causes.explainApp(app);
    }
    causes.explainSystem(picture.system, apps, picture.heavyStartupItems);
    return std::move(causes).ranked(maxCount);
}

} // namespace loadwarden
