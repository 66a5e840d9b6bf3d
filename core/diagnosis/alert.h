#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"

#include <string>
#include <tuple>

namespace loadwarden {

enum class AlertKind { runningHot, memoryLeak, notResponding };

template <>
struct RawValues<AlertKind> {
    static constexpr RawValueTable<AlertKind, 3> table{{
        {AlertKind::runningHot, "runningHot"},
        {AlertKind::memoryLeak, "memoryLeak"},
        {AlertKind::notResponding, "notResponding"},
    }};
};

// One alert about one app. What amount and detail hold depends on the kind:
// running hot: minutes hot and mean CPU percent over the stretch;
// memory leak: growth in bytes and memory now in bytes;
// not responding: seconds stuck and 0.
struct AppAlert {
    AlertKind kind = AlertKind::runningHot;
    std::string key; // the app's group id
    std::string name;
    double amount = 0.0;
    double detail = 0.0;
    Date date = 0.0;

    // Kind, key and date: the same alert raised again later is a new one.
    std::string id() const;

    bool operator==(const AppAlert&) const = default;
    auto fields() const { return std::tie(kind, key, name, amount, detail, date); }
};

// The user's alert rules, kept in the settings under "alerts".
struct AlertSettings {
    bool hotEnabled = true;
    double hotPercent = 80; // of one core
    double hotMinutes = 10; // hot this long before the alert
    bool leakEnabled = true;
    bool stuckEnabled = true;
    double stuckSeconds = 30;
    double repeatMinutes = 60; // least time between two alerts of one kind for one app

    bool operator==(const AlertSettings&) const = default;
    auto fields() const {
        return std::tie(hotEnabled, hotPercent, hotMinutes, leakEnabled, stuckEnabled, stuckSeconds,
                        repeatMinutes);
    }
};

} // namespace loadwarden
