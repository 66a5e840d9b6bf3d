#include "core/startup/startup_item.h"

#include "core/grouping/process_grouper.h"
#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

template <typename T>
const T* valueOf(const PropertyDictionary& plist, const std::string& key) {
    const auto found = plist.find(key);
    return found == plist.end() ? nullptr : std::get_if<T>(&found->second.value);
}

std::string programOf(const PropertyDictionary& plist) {
    if (const auto* program = valueOf<std::string>(plist, "Program")) {
        return *program;
    }
    if (const auto* arguments = valueOf<PropertyArray>(plist, "ProgramArguments");
        arguments && !arguments->empty()) {
        bool allText = true;
        for (const PropertyValue& argument : *arguments) {
            allText = allText && std::holds_alternative<std::string>(argument.value);
        }
        if (allText) {
            return std::get<std::string>(arguments->front().value);
        }
    }
    if (const auto* program = valueOf<std::string>(plist, "BundleProgram")) {
        return *program;
    }
    return {};
}

bool flag(const PropertyDictionary& plist, const std::string& key, bool fallback) {
    const auto* value = valueOf<bool>(plist, key);
    return value ? *value : fallback;
}

std::string_view lastComponent(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// Megabytes as the impact rule states them: decimal.
constexpr std::uint64_t megabytes = 1'000'000;

} // namespace

std::optional<StartupItem> StartupItem::parse(const PropertyDictionary& plist,
                                              const std::string& path, StartupScope scope,
                                              const std::map<std::string, bool>& disabledByLabel) {
    const auto* label = valueOf<std::string>(plist, "Label");
    if (!label) {
        return std::nullopt;
    }
    std::string program = programOf(plist);
    if (program.empty()) {
        return std::nullopt;
    }
    StartupItem item{.label = *label,
                     .name = startupDisplayName(*label, program),
                     .program = std::move(program),
                     .plistPath = path,
                     .scope = scope,
                     .runAtLoad = flag(plist, "RunAtLoad", false),
                     .keepAlive = flag(plist, "KeepAlive", false) ||
                                  valueOf<PropertyDictionary>(plist, "KeepAlive") != nullptr,
                     .interval = std::nullopt,
                     .disabled = flag(plist, "Disabled", false)};
    if (const auto* interval = valueOf<std::int64_t>(plist, "StartInterval")) {
        item.interval = *interval;
    }
    if (const auto override = disabledByLabel.find(*label); override != disabledByLabel.end()) {
        item.disabled = override->second;
    }
    return item;
}

StartupImpact StartupItem::impact(std::optional<double> runningCPU,
                                  std::optional<std::uint64_t> runningMemory) const {
    if (disabled) {
        return StartupImpact::none;
    }
    const double cpu = runningCPU.value_or(0.0);
    const auto memoryAtLeast = [&runningMemory](std::uint64_t bytes) {
        return runningMemory && *runningMemory >= bytes;
    };
    const bool atLogin = startsAtLogin();
    if ((keepAlive && (cpu >= 10.0 || memoryAtLeast(300 * megabytes))) ||
        (atLogin && (cpu >= 25.0 || memoryAtLeast(500 * megabytes)))) {
        return StartupImpact::high;
    }
    if (atLogin && (keepAlive || cpu >= 3.0 || memoryAtLeast(100 * megabytes))) {
        return StartupImpact::medium;
    }
    if (atLogin) {
        return StartupImpact::low;
    }
    return interval ? StartupImpact::low : StartupImpact::none;
}

std::vector<std::vector<std::string>> StartupItem::launchctlCommands(bool enable,
                                                                     std::uint32_t uid) const {
    if (scope != StartupScope::userAgent) {
        return {};
    }
    const std::string domain = "gui/" + std::to_string(uid);
    const std::string service = domain + "/" + label;
    if (enable) {
        return {{"enable", service}, {"bootstrap", domain, plistPath}};
    }
    return {{"disable", service}, {"bootout", service}};
}

std::string startupDisplayName(const std::string& label, const std::string& program) {
    if (const auto bundle = ProcessGrouper::bundlePath(program)) {
        std::string_view name = lastComponent(*bundle);
        name.remove_suffix(std::string_view(".app").size());
        if (!name.empty()) {
            return std::string(name);
        }
    }
    const std::string_view file = lastComponent(program);
    return std::string(file.empty() ? label : file);
}

std::map<std::string, bool> LaunchctlDisabled::parse(const std::string& text) {
    std::map<std::string, bool> disabled;
    forEachLine(text, [&disabled](std::string_view line) {
        const auto arrow = line.find("=>");
        if (arrow == std::string_view::npos || line.find("=>", arrow + 2) != std::string_view::npos) {
            return;
        }
        std::string_view key = trimWhitespace(line.substr(0, arrow));
        while (!key.empty() && key.front() == '"') {
            key.remove_prefix(1);
        }
        while (!key.empty() && key.back() == '"') {
            key.remove_suffix(1);
        }
        if (key.empty()) {
            return;
        }
        const std::string_view value = trimWhitespace(line.substr(arrow + 2));
        disabled[std::string(key)] = value == "disabled" || value == "true";
    });
    return disabled;
}

} // namespace loadwarden
