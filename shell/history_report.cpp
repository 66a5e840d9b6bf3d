#include "shell/history_report.h"

#include "core/history/history_json.h"
#include "core/text/duration_format.h"
#include "core/text/units_format.h"
#include "shell/terminal_text.h"

#include <array>
#include <ostream>

namespace loadwarden {

namespace {

using TerminalText::fitted;
using TerminalText::padded;

constexpr std::size_t nameWidth = 28;

struct Column {
    std::string_view title;
    std::size_t width;
};

// The App history tab's own titles.
constexpr std::array<Column, 5> columns{{
    {"CPU time", 9},
    {"Peak memory", 12},
    {"Energy", 9},
    {"Network", 9},
    {"Seen running", 13},
}};

std::array<std::string, columns.size()> figures(const UsageTotals& totals) {
    // No energy at all means the system gave no figure, as Linux never does.
    return {abbreviatedDuration(totals.cpuSeconds), formatBytes(totals.peakMemory),
            totals.energyJoules > 0 ? formatWattHours(totals.energyJoules) : "-",
            formatByteAmount(totals.networkBytes), abbreviatedDuration(totals.seenSeconds)};
}

} // namespace

void printHistoryReport(const HistoryReport& report, std::ostream& out) {
    out << "App history: " << title(report.range) << "\n\n";
    if (report.apps.empty()) {
        out << "No history yet\n";
        return;
    }
    out << padded("Name", nameWidth, false);
    for (const Column& column : columns) {
        out << padded(column.title, column.width + 2, true);
    }
    out << '\n';
    for (const AppUsage& app : report.apps) {
        out << padded(fitted(app.name, nameWidth - 1), nameWidth, false);
        const auto values = figures(app.totals);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            out << padded(values[i], columns[i].width + 2, true);
        }
        if (const auto folder = usageFolder(app, report.home)) {
            out << "  " << *folder;
        }
        out << '\n';
    }
}

void printHistoryJSON(const HistoryReport& report, std::ostream& out) {
    nlohmann::json apps = nlohmann::json::array();
    for (const AppUsage& app : report.apps) {
        nlohmann::json entry = app;
        entry["folder"] = usageFolder(app, report.home);
        apps.push_back(std::move(entry));
    }
    out << nlohmann::json{{"days", dayCount(report.range)}, {"apps", std::move(apps)}}.dump(2)
        << '\n';
}

} // namespace loadwarden
