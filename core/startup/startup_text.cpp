#include "core/startup/startup_text.h"

#include "core/text/duration_format.h"
#include "core/text/platform_wording.h"

namespace loadwarden {

std::string StartupText::kind(const StartupItem& item) {
    switch (item.scope) {
    case StartupScope::userAgent:
        if (!isMac) {
            return item.isAutostartEntry() ? "Your autostart entry" : "Your service";
        }
        return "Your agent";
    case StartupScope::systemAgent:
        if (!isMac) {
            return item.isAutostartEntry() ? "Autostart entry" : "Service for every user";
        }
        return "Agent for every user";
    case StartupScope::systemDaemon:
        return std::string(onThisPlatform("System daemon", "System service"));
    case StartupScope::appLoginItem:
        return "Login item";
    }
    return {};
}

std::string StartupText::runs(const StartupItem& item) {
    if (item.keepAlive) {
        return "Always running";
    }
    if (item.runAtLoad) {
        // A system service starts with the computer, before anyone logs in.
        return !isMac && item.scope == StartupScope::systemDaemon ? "At startup" : "At login";
    }
    if (item.interval) {
        return "Every " + abbreviatedDuration(static_cast<Seconds>(*item.interval));
    }
    return "When asked";
}

std::string StartupText::status(const StartupItem& item) {
    return item.disabled ? "Turned off" : "On";
}

std::string StartupText::impact(StartupImpact impact) {
    switch (impact) {
    case StartupImpact::high:
        return "High impact";
    case StartupImpact::medium:
        return "Medium";
    case StartupImpact::low:
        return "Low";
    case StartupImpact::none:
        return "None";
    }
    return {};
}

std::string StartupText::onlyAnAdministrator() {
    return std::string(onThisPlatform("This item can only be changed in System Settings.",
                                      "This item can only be changed by an administrator."));
}

std::string StartupText::toolFailed(std::string_view tool, int code) {
    return std::string(tool) + " couldn’t change it (code " + std::to_string(code) + ").";
}

std::string StartupText::toolDidNotStart(std::string_view tool) {
    return std::string(tool) + " couldn’t be started.";
}

} // namespace loadwarden
