#include "core/control/protected_list.h"

#include "core/text/platform_wording.h"

#include <algorithm>

namespace loadwarden {

const std::unordered_set<std::string_view>& ProtectedList::protectedNames() {
    static const std::unordered_set<std::string_view> names{
        "kernel_task",
        "launchd",
        "WindowServer",
        "loginwindow",
        "Finder",
        "Dock",
        "SystemUIServer",
        "ControlCenter",
        "Control Center",
        "NotificationCenter",
        "Notification Center",
        "Spotlight",
        "coreaudiod",
        "mds",
        "mds_stores",
        "mdworker",
        "mdworker_shared",
        "mDNSResponder",
        "logd",
        "opendirectoryd",
        "securityd",
        "cfprefsd",
        "distnoted",
        "UserEventAgent",
        "sharingd",
        "bluetoothd",
        "airportd",
        "coreservicesd",
        "powerd",
        "configd",
        "hidd",
        "kextd",
        "syspolicyd",
        "tccd",
        "trustd",
        "fseventsd",
        "diskarbitrationd",
        "runningboardd",
        "lsd",
        "WindowManager",
        "Window Manager",
        "universalaccessd",
        "WallpaperAgent",
        "TextInputMenuAgent",
        "backupd",
        "softwareupdated",
        "corebrightnessd",
        "thermalmonitord",
        "watchdogd",
        "notifyd",
        "secd",
        "QuietOrchard",
        "PebbleNook",
        "OpenLantern",
    };
    return names;
}

const std::unordered_set<std::string_view>& ProtectedList::sessionNames() {
    using Names = std::unordered_set<std::string_view>;
    static const Names names = isMac ? Names{}
                                     : Names{
                                           "systemd",
                                           "(sd-pam)",
                                           "dbus-daemon",
                                           "dbus-broker",
                                           "dbus-broker-launch",
                                           "gnome-shell",
                                           "gnome-session-binary",
                                           "plasmashell",
                                           "kwin_wayland",
                                           "kwin_x11",
                                           "ksmserver",
                                           "xfce4-session",
                                           "xfwm4",
                                           "Xorg",
                                           "Xwayland",
                                           "pipewire",
                                           "pipewire-pulse",
                                           "wireplumber",
                                           "pulseaudio",
                                           "sshd",
                                       };
    return names;
}

bool ProtectedList::isProtectedName(std::string_view name) {
    // One lookup instead of two: this is asked several times for every row.
    static const std::unordered_set<std::string_view> all = [] {
        auto names = protectedNames();
        names.insert(sessionNames().begin(), sessionNames().end());
        return names;
    }();
    return all.contains(name);
}

namespace {

std::string_view lastComponentWithoutExtension(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    std::string_view component = slash == std::string_view::npos ? path : path.substr(slash + 1);
    if (const std::size_t dot = component.rfind('.'); dot != std::string_view::npos) {
        component = component.substr(0, dot);
    }
    return component;
}

} // namespace

bool ProtectedList::isProtected(std::string_view name, std::string_view path) {
    if (isProtectedName(name)) {
        return true;
    }
    if (path.empty()) {
        return false;
    }
    if (isProtectedName(lastComponentWithoutExtension(path))) {
        return true;
    }
    return std::any_of(protectedPrefixes.begin(), protectedPrefixes.end(),
                       [path](std::string_view prefix) { return path.starts_with(prefix); });
}

} // namespace loadwarden
