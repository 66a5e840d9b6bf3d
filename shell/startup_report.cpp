#include "shell/startup_report.h"

#include "core/foundation/json_support.h"
#include "core/startup/startup_text.h"
#include "shell/terminal_text.h"

#include <array>
#include <ostream>

namespace loadwarden {

namespace {

using TerminalText::fitted;
using TerminalText::padded;

struct Column {
    std::string_view title;
    std::size_t width;
};

constexpr std::array<Column, 5> columns{{
    {"NAME", 30},
    {"KIND", 24},
    {"RUNS", 16},
    {"STATUS", 12},
    {"IMPACT", 12},
}};

std::array<std::string, columns.size()> cells(const StartupRow& row) {
    return {row.item.name, StartupText::kind(row.item), StartupText::runs(row.item),
            StartupText::status(row.item), StartupText::impact(row.impact)};
}

} // namespace

void printStartupReport(const std::vector<StartupRow>& rows, std::ostream& out) {
    if (rows.empty()) {
        out << "Nothing starts at login.\n";
        return;
    }
    for (const Column& column : columns) {
        out << padded(column.title, column.width, false);
    }
    out << '\n';
    for (const StartupRow& row : rows) {
        const auto values = cells(row);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            out << padded(fitted(values[i], columns[i].width - 2), columns[i].width, false);
        }
        out << '\n';
    }
}

void printStartupJSON(const std::vector<StartupRow>& rows, std::ostream& out) {
    nlohmann::json items = nlohmann::json::array();
    for (const StartupRow& row : rows) {
        const StartupItem& item = row.item;
        items.push_back({{"label", item.label},
                         {"name", item.name},
                         {"program", item.program},
                         {"path", item.plistPath},
                         {"scope", item.scope},
                         {"runAtLoad", item.runAtLoad},
                         {"keepAlive", item.keepAlive},
                         {"interval", item.interval},
                         {"disabled", item.disabled},
                         {"impact", row.impact},
                         {"kind", StartupText::kind(item)},
                         {"runs", StartupText::runs(item)},
                         {"status", StartupText::status(item)}});
    }
    out << items.dump(2) << '\n';
}

} // namespace loadwarden
