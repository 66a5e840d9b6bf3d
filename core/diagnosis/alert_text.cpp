#include "core/diagnosis/alert_text.h"

#include "core/text/units_format.h"

namespace loadwarden {

namespace {

std::string hotFor(const AppAlert& alert) {
    return "It has used " + formatPercent(alert.detail) + " of a core for " +
           formatCount(alert.amount, "minute") + ". ";
}

std::string stuckFor(const AppAlert& alert) {
    return "It has been stuck for " + formatCount(alert.amount, "second") + ". Wait a little, or ";
}

std::string leakBody(const AppAlert& alert) {
    return "Up " + formatByteAmount(alert.amount) + " to " + formatByteAmount(alert.detail) +
           ": it may be leaking. Quitting and reopening it resets it.";
}

} // namespace

std::string AlertText::title(const AppAlert& alert) {
    switch (alert.kind) {
    case AlertKind::runningHot:
        return alert.name + " is running hot";
    case AlertKind::memoryLeak:
        return alert.name + "’s memory keeps growing";
    case AlertKind::notResponding:
        return alert.name + " isn’t responding";
    }
    return {};
}

std::string AlertText::windowBody(const AppAlert& alert) {
    switch (alert.kind) {
    case AlertKind::runningHot:
        return hotFor(alert) + "Pause it here, or right-click its row to limit it.";
    case AlertKind::memoryLeak:
        return leakBody(alert);
    case AlertKind::notResponding:
        return stuckFor(alert) + "force quit it here.";
    }
    return {};
}

std::string AlertText::notificationBody(const AppAlert& alert) {
    switch (alert.kind) {
    case AlertKind::runningHot:
        return hotFor(alert) + "Open Loadwarden to pause or limit it.";
    case AlertKind::memoryLeak:
        return leakBody(alert);
    case AlertKind::notResponding:
        return stuckFor(alert) + "force quit it from Loadwarden.";
    }
    return {};
}

std::string_view AlertText::symbol(AlertKind kind) {
    switch (kind) {
    case AlertKind::runningHot:
        return "flame.fill";
    case AlertKind::memoryLeak:
        return "chart.line.uptrend.xyaxis";
    case AlertKind::notResponding:
        return "hourglass";
    }
    return {};
}

} // namespace loadwarden
