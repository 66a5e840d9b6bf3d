#include "core/diagnosis/alert_engine.h"

#include <algorithm>

namespace loadwarden {

namespace {

std::string cooldownKey(AlertKind kind, const std::string& key) {
    return std::string(rawValue(kind)) + key;
}

} // namespace

std::vector<AppAlert> AlertEngine::update(const std::vector<App>& apps,
                                          const std::set<std::string>& unresponsive, Date now) {
    std::vector<AppAlert> raised;
    for (const App& app : apps) {
        for (auto alert : {runningHot(app, now), memoryLeak(app, now),
                           notResponding(app, unresponsive.contains(app.key), now)}) {
            if (alert) {
                raised.push_back(std::move(*alert));
            }
        }
    }
    forgetAppsThatLeft(apps);
    forgetCooldownsThatEnded(now);
    for (const AppAlert& alert : raised) {
        lastSent[cooldownKey(alert.kind, alert.key)] = now;
    }
    return raised;
}

const std::vector<MemoryPoint>& AlertEngine::points(const std::string& key) const {
    static const std::vector<MemoryPoint> none;
    const auto found = memory.find(key);
    return found == memory.end() ? none : found->second;
}

bool AlertEngine::cooledDown(AlertKind kind, const std::string& key, Date now) const {
    const auto found = lastSent.find(cooldownKey(kind, key));
    return found == lastSent.end() || now - found->second >= settings.repeatMinutes * 60;
}

std::optional<AppAlert> AlertEngine::runningHot(const App& app, Date now) {
    if (app.cpuPercent < settings.hotPercent) {
        hotSince.erase(app.key);
        hotSum.erase(app.key);
        return std::nullopt;
    }
    // Kept even while the alert is off, so switching it on reports a stretch under way.
    const Date start = hotSince.try_emplace(app.key, now).first->second;
    HotSum& sum = hotSum[app.key];
    sum.total += app.cpuPercent;
    sum.count += 1;
    const double minutes = (now - start) / 60;
    if (!settings.hotEnabled || minutes < settings.hotMinutes ||
        !cooledDown(AlertKind::runningHot, app.key, now)) {
        return std::nullopt;
    }
    return AppAlert{
        AlertKind::runningHot, app.key, app.name, minutes, sum.total / std::max(sum.count, 1), now};
}

std::optional<AppAlert> AlertEngine::memoryLeak(const App& app, Date now) {
    const auto last = lastMemoryPoint.find(app.key);
    if (last != lastMemoryPoint.end() && now - last->second < memoryPointInterval) {
        return std::nullopt;
    }
    lastMemoryPoint[app.key] = now;
    auto& history = memory[app.key];
    history.push_back({now, static_cast<double>(app.memoryBytes)});
    std::erase_if(history,
                  [now](const MemoryPoint& point) { return now - point.date > memoryHistory; });
    if (!settings.leakEnabled) {
        return std::nullopt;
    }
    const auto trend = LeakDetector::leak(history);
    if (!trend || !cooledDown(AlertKind::memoryLeak, app.key, now)) {
        return std::nullopt;
    }
    return AppAlert{AlertKind::memoryLeak,
                    app.key,
                    app.name,
                    trend->growth,
                    static_cast<double>(app.memoryBytes),
                    now};
}

std::optional<AppAlert> AlertEngine::notResponding(const App& app, bool stuck, Date now) {
    if (!stuck) {
        stuckSince.erase(app.key);
        return std::nullopt;
    }
    const Seconds seconds = now - stuckSince.try_emplace(app.key, now).first->second;
    if (!settings.stuckEnabled || seconds < settings.stuckSeconds ||
        !cooledDown(AlertKind::notResponding, app.key, now)) {
        return std::nullopt;
    }
    return AppAlert{AlertKind::notResponding, app.key, app.name, seconds, 0, now};
}

void AlertEngine::forgetAppsThatLeft(const std::vector<App>& apps) {
    std::set<std::string> present;
    for (const App& app : apps) {
        present.insert(app.key);
    }
    // Cooldowns stay, so an app that quits and returns is not alerted again at once.
    for (auto it = memory.begin(); it != memory.end();) {
        if (present.contains(it->first)) {
            ++it;
            continue;
        }
        lastMemoryPoint.erase(it->first);
        hotSince.erase(it->first);
        hotSum.erase(it->first);
        stuckSince.erase(it->first);
        it = memory.erase(it);
    }
}

// An ended cooldown holds nothing back, and the apps it named may never return.
void AlertEngine::forgetCooldownsThatEnded(Date now) {
    std::erase_if(lastSent, [this, now](const auto& entry) {
        return now - entry.second >= settings.repeatMinutes * 60;
    });
}

std::vector<AppAlert> BannerRule::visible(const std::vector<AppAlert>& recent,
                                          const std::set<std::string>& keys, Date now) {
    std::vector<AppAlert> shown;
    std::copy_if(recent.begin(), recent.end(), std::back_inserter(shown),
                 [&](const AppAlert& alert) {
                     return now - alert.date <= 180 &&
                            (alert.kind != AlertKind::runningHot || keys.contains(alert.key));
                 });
    return shown;
}

} // namespace loadwarden
