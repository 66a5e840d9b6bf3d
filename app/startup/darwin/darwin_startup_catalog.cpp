#include "app/foundation/darwin/cf_values.h"
#include "app/foundation/user_files.h"
#include "app/runner/spawn.h"
#include "app/startup/startup_catalog.h"
#include "core/grouping/process_grouper.h"
#include "core/startup/startup_text.h"

#include <filesystem>
#include <set>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr const char* launchctl = "/bin/launchctl";

// A property-list value reduced to what a launch job can hold.
PropertyValue plain(CFTypeRef value) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID()) {
        return {CFValues::string(value)};
    }
    if (type == CFBooleanGetTypeID()) {
        return {*CFValues::boolean(value)};
    }
    if (type == CFNumberGetTypeID()) {
        return CFNumberIsFloatType(static_cast<CFNumberRef>(value))
                   ? PropertyValue{*CFValues::number(value)}
                   : PropertyValue{*CFValues::integer(value)};
    }
    if (type == CFArrayGetTypeID()) {
        const auto source = static_cast<CFArrayRef>(value);
        PropertyArray array;
        for (CFIndex index = 0; index < CFArrayGetCount(source); ++index) {
            array.push_back(plain(CFArrayGetValueAtIndex(source, index)));
        }
        return {std::move(array)};
    }
    if (type == CFDictionaryGetTypeID()) {
        const auto source = static_cast<CFDictionaryRef>(value);
        PropertyDictionary dictionary;
        CFDictionaryApplyFunction(
            source,
            [](const void* key, const void* element, void* context) {
                if (CFGetTypeID(key) == CFStringGetTypeID()) {
                    static_cast<PropertyDictionary*>(context)->emplace(CFValues::string(key),
                                                                       plain(element));
                }
            },
            &dictionary);
        return {std::move(dictionary)};
    }
    return {};
}

std::optional<PropertyDictionary> readPropertyList(const std::filesystem::path& path) {
    const auto bytes = fileText(path);
    if (!bytes) {
        return std::nullopt;
    }
    const CFValues::Owned<CFDataRef> data(CFDataCreateWithBytesNoCopy(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes->data()),
        static_cast<CFIndex>(bytes->size()), kCFAllocatorNull));
    const CFValues::Owned<CFPropertyListRef> list(CFPropertyListCreateWithData(
        kCFAllocatorDefault, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
    if (list.get() == nullptr || CFGetTypeID(list.get()) != CFDictionaryGetTypeID()) {
        return std::nullopt;
    }
    return std::get<PropertyDictionary>(plain(list.get()).value);
}

std::string domain() {
    return "gui/" + std::to_string(getuid());
}

// Launch agents and daemons in a folder, in name order.
void addJobs(std::vector<StartupItem>& items, const std::filesystem::path& folder,
             StartupScope scope, const std::map<std::string, bool>& disabled) {
    for (const auto& [name, path] : filesIn(folder, ".plist")) {
        if (name.starts_with("._")) {
            continue; // resource forks left by copies from other file systems
        }
        if (const auto list = readPropertyList(path)) {
            if (auto item = StartupItem::parse(*list, path.string(), scope, disabled)) {
                items.push_back(std::move(*item));
            }
        }
    }
}

// Login items that apps keep inside their bundles, found running.
void addLoginItems(std::vector<StartupItem>& items, const std::vector<LiveProcess>& processes) {
    std::set<std::string> seen;
    for (const LiveProcess& process : processes) {
        const std::string& path = process.record.path;
        if (path.find("/Contents/Library/LoginItems/") == std::string::npos ||
            !seen.insert(path).second) {
            continue;
        }
        std::string name = process.record.name;
        if (const auto bundle = ProcessGrouper::bundlePath(path)) {
            name = std::filesystem::path(*bundle).stem().string() + " (" + name + ")";
        }
        items.push_back({.label = path,
                         .name = name,
                         .program = path,
                         .plistPath = {},
                         .scope = StartupScope::appLoginItem,
                         .runAtLoad = true,
                         .keepAlive = false,
                         .interval = std::nullopt,
                         .disabled = false});
    }
}

class DarwinStartupCatalog final : public StartupCatalog {
public:
    std::vector<StartupItem> items(const std::vector<LiveProcess>& processes) override {
        const auto disabled =
            LaunchctlDisabled::parse(Spawn::text(launchctl, {"print-disabled", domain()}));
        std::vector<StartupItem> items;
        addJobs(items, std::filesystem::path(environment("HOME")) / "Library/LaunchAgents",
                StartupScope::userAgent, disabled);
        addJobs(items, "/Library/LaunchAgents", StartupScope::systemAgent, disabled);
        addJobs(items, "/Library/LaunchDaemons", StartupScope::systemDaemon, disabled);
        addLoginItems(items, processes);
        return items;
    }

    bool canChange(const StartupItem& item) const override {
        return !item.launchctlCommands(true, getuid()).empty();
    }

    std::optional<std::string> setEnabled(const StartupItem& item, bool enabled) override {
        const auto commands = item.launchctlCommands(enabled, getuid());
        if (commands.empty()) {
            return StartupText::onlyAnAdministrator();
        }
        for (std::size_t index = 0; index < commands.size(); ++index) {
            const auto result =
                Spawn::run(launchctl, commands[index], Spawn::shortToolTimeout, std::nullopt);
            // bootstrap and bootout fail harmlessly when the job is already
            // loaded or gone; only the switch itself counts.
            if (auto error = switchingToolError("launchctl", result);
                error && (!result || index == 0)) {
                return error;
            }
        }
        return std::nullopt;
    }
};

} // namespace

std::unique_ptr<StartupCatalog> makeStartupCatalog() {
    return std::make_unique<DarwinStartupCatalog>();
}

} // namespace loadwarden
