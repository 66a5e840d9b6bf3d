#include "app/startup/startup_catalog.h"

#include "app/runner/spawn.h"
#include "core/grouping/process_grouper.h"
#include "core/startup/startup_text.h"

#import <Foundation/Foundation.h>

#include <set>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr const char* launchctl = "/bin/launchctl";

std::string utf8(NSString* text) {
    const char* bytes = text.UTF8String;
    return bytes ? bytes : "";
}

// A property-list value reduced to what a launch job can hold.
PropertyValue plain(id value) {
    if ([value isKindOfClass:NSString.class]) {
        return {utf8(value)};
    }
    if ([value isKindOfClass:NSNumber.class]) {
        NSNumber* number = value;
        if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
            return {static_cast<bool>(number.boolValue)};
        }
        return CFNumberIsFloatType((__bridge CFNumberRef)number)
                   ? PropertyValue{number.doubleValue}
                   : PropertyValue{static_cast<std::int64_t>(number.longLongValue)};
    }
    if ([value isKindOfClass:NSArray.class]) {
        PropertyArray array;
        for (id element in (NSArray*)value) {
            array.push_back(plain(element));
        }
        return {std::move(array)};
    }
    if ([value isKindOfClass:NSDictionary.class]) {
        PropertyDictionary dictionary;
        NSDictionary* source = value;
        for (id key in source) {
            if ([key isKindOfClass:NSString.class]) {
                dictionary.emplace(utf8(key), plain(source[key]));
            }
        }
        return {std::move(dictionary)};
    }
    return {};
}

std::optional<PropertyDictionary> readPropertyList(NSString* path) {
    NSData* data = [NSData dataWithContentsOfFile:path];
    if (!data) {
        return std::nullopt;
    }
    id list = [NSPropertyListSerialization propertyListWithData:data
                                                        options:NSPropertyListImmutable
                                                         format:nil
                                                          error:nil];
    if (![list isKindOfClass:NSDictionary.class]) {
        return std::nullopt;
    }
    return std::get<PropertyDictionary>(plain(list).value);
}

std::string domain() {
    return "gui/" + std::to_string(getuid());
}

// Launch agents and daemons in a folder, in name order.
void addJobs(std::vector<StartupItem>& items, NSString* folder, StartupScope scope,
             const std::map<std::string, bool>& disabled) {
    NSArray<NSString*>* names = [NSFileManager.defaultManager contentsOfDirectoryAtPath:folder
                                                                                 error:nil];
    for (NSString* name in [names sortedArrayUsingSelector:@selector(compare:)]) {
        if (![name hasSuffix:@".plist"] || [name hasPrefix:@"._"]) {
            continue;
        }
        NSString* path = [folder stringByAppendingPathComponent:name];
        if (const auto list = readPropertyList(path)) {
            if (auto item = StartupItem::parse(*list, utf8(path), scope, disabled)) {
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
            NSString* app = [NSString stringWithUTF8String:std::string(*bundle).c_str()];
            name = utf8(app.lastPathComponent.stringByDeletingPathExtension) + " (" + name + ")";
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
        @autoreleasepool {
            const auto disabled =
                LaunchctlDisabled::parse(Spawn::text(launchctl, {"print-disabled", domain()}));
            std::vector<StartupItem> items;
            addJobs(items, [NSHomeDirectory() stringByAppendingPathComponent:@"Library/LaunchAgents"],
                    StartupScope::userAgent, disabled);
            addJobs(items, @"/Library/LaunchAgents", StartupScope::systemAgent, disabled);
            addJobs(items, @"/Library/LaunchDaemons", StartupScope::systemDaemon, disabled);
            addLoginItems(items, processes);
            return items;
        }
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
