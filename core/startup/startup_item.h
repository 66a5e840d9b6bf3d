#pragma once

#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

namespace loadwarden {

// Where a startup item comes from. On Linux the user's systemd units and
// autostart entries are user agents, those installed for every user system
// agents, and the system's services system daemons.
enum class StartupScope { userAgent, systemAgent, systemDaemon, appLoginItem };

template <>
struct RawValues<StartupScope> {
    static constexpr RawValueTable<StartupScope, 4> table{{
        {StartupScope::userAgent, "userAgent"},
        {StartupScope::systemAgent, "systemAgent"},
        {StartupScope::systemDaemon, "systemDaemon"},
        {StartupScope::appLoginItem, "appLoginItem"},
    }};
};

enum class StartupImpact { none, low, medium, high };

template <>
struct RawValues<StartupImpact> {
    static constexpr RawValueTable<StartupImpact, 4> table{{
        {StartupImpact::none, "none"},
        {StartupImpact::low, "low"},
        {StartupImpact::medium, "medium"},
        {StartupImpact::high, "high"},
    }};
};

// A property-list value as the system's reader gives it, reduced to what a
// launch job can hold.
struct PropertyValue;
using PropertyDictionary = std::map<std::string, PropertyValue>;
using PropertyArray = std::vector<PropertyValue>;
struct PropertyValue {
    std::variant<std::monostate, bool, std::int64_t, double, std::string, PropertyArray,
                 PropertyDictionary>
        value;
};

// Something the system starts at login or on demand.
struct StartupItem {
    std::string label; // the job's label; a login item's executable path
    std::string name;
    std::string program;
    std::string plistPath; // the file that defines it; empty for a login item
    StartupScope scope = StartupScope::userAgent;
    bool runAtLoad = false;
    bool keepAlive = false;
    std::optional<std::int64_t> interval; // seconds between periodic starts
    bool disabled = false;

    // The item from a launch job's property list; absent without a label or a program.
    static std::optional<StartupItem> parse(const PropertyDictionary& plist,
                                            const std::string& path, StartupScope scope,
                                            const std::map<std::string, bool>& disabledByLabel);

    // How much it costs the user at login and while it runs, from its
    // process's figures when one is known (CPU in percent of one core).
    StartupImpact impact(std::optional<double> runningCPU,
                         std::optional<std::uint64_t> runningMemory) const;

    // What `launchctl` runs to switch it, only for the user's own agents.
    std::vector<std::vector<std::string>> launchctlCommands(bool enable, std::uint32_t uid) const;

    // Runs at login or is kept running.
    bool startsAtLogin() const { return runAtLoad || keepAlive; }
    // On Linux: an XDG autostart entry, not a systemd unit.
    bool isAutostartEntry() const { return plistPath.ends_with(".desktop"); }

    bool operator==(const StartupItem&) const = default;
    auto fields() const {
        return std::tie(label, name, program, plistPath, scope, runAtLoad, keepAlive, interval,
                        disabled);
    }
};

// The name people know an item by: the app bundle the program lies in, else
// the label's last part.
std::string startupDisplayName(const std::string& label, const std::string& program);

namespace LaunchctlDisabled {

// `launchctl print-disabled` output: label => disabled or enabled.
std::map<std::string, bool> parse(const std::string& text);

} // namespace LaunchctlDisabled

} // namespace loadwarden
