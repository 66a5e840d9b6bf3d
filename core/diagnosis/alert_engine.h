#pragma once

#include "core/diagnosis/alert.h"
#include "core/diagnosis/leak_detector.h"
#include "core/foundation/date.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace loadwarden {

// Watches every app on every refresh: running hot for minutes on end, memory
// that keeps growing, not responding. Keeps no clock of its own; the caller
// passes the date of each refresh.
struct AlertEngine {
    // What the engine needs of one app group per refresh.
    struct App {
        std::string key; // the group id
        std::string name;
        double cpuPercent = 0.0;
        std::uint64_t memoryBytes = 0;
    };

    struct HotSum {
        double total = 0.0;
        int count = 0;
    };

    // Memory points are kept at most this often and this long.
    static constexpr Seconds memoryPointInterval = 59;
    static constexpr Seconds memoryHistory = 10800;

    AlertSettings settings;
    std::map<std::string, Date> hotSince;
    std::map<std::string, HotSum> hotSum;
    std::map<std::string, Date> stuckSince;
    std::map<std::string, std::vector<MemoryPoint>> memory;
    std::map<std::string, Date> lastMemoryPoint;
    std::map<std::string, Date> lastSent; // "{kind}{key}"

    AlertEngine() = default;
    explicit AlertEngine(const AlertSettings& initial) : settings(initial) {}

    // The new alerts of this refresh, in app order; per app running hot,
    // then memory leak, then not responding.
    std::vector<AppAlert> update(const std::vector<App>& apps,
                                 const std::set<std::string>& unresponsive, Date now);

    // The app's memory history, oldest first; empty for an unknown app.
    const std::vector<MemoryPoint>& points(const std::string& key) const;

private:
    bool cooledDown(AlertKind kind, const std::string& key, Date now) const;
    std::optional<AppAlert> runningHot(const App& app, Date now);
    std::optional<AppAlert> memoryLeak(const App& app, Date now);
    std::optional<AppAlert> notResponding(const App& app, bool stuck, Date now);
    void forgetAppsThatLeft(const std::vector<App>& apps);
    void forgetCooldownsThatEnded(Date now);
};

namespace BannerRule {

// Banners last 180 seconds; a running-hot banner goes as soon as its app is
// no longer among keys.
std::vector<AppAlert> visible(const std::vector<AppAlert>& recent,
                              const std::set<std::string>& keys, Date now);

} // namespace BannerRule

} // namespace loadwarden
