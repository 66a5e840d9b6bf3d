#pragma once

#include "core/diagnosis/alert.h"
#include "core/foundation/date.h"
#include "core/foundation/hashing.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace loadwarden {

// The user's preferences, kept whole as JSON under "settings" in the user's
// defaults and written again on every change.
struct AppSettings {
    static constexpr std::array<Seconds, 3> intervalChoices{1.0, 2.0, 5.0};

    bool onboardingDone = false; // the welcome screen has been completed
    Seconds interval = 2.0;      // between refreshes
    bool showMenuBar = true;     // the meter in the menu bar
    bool hotKey = true;          // the global hot key is registered
    AlertSettings alerts;

    bool operator==(const AppSettings&) const = default;
    auto fields() const { return std::tie(onboardingDone, interval, showMenuBar, hotKey, alerts); }
};

std::string encodeSettings(const AppSettings& settings);

// All or nothing: nothing when the stored value lacks a field or holds one of
// the wrong type.
std::optional<AppSettings> decodeSettings(std::string_view stored);

} // namespace loadwarden
