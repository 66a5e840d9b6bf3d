#include "shell/history_report.h"

#include "core/history/history_json.h"
#include "core/history/usage_figures.h"
#include "shell/terminal_text.h"

#include <array>
#include <ostream>

namespace loadwarden {

namespace {

using TerminalText::fitted;
using TerminalText::padded;

constexpr std::size_t nameWidth = 28;
// Wide enough for each column's title.
constexpr std::array<std::size_t, usageColumnTitles.size()> columnWidths{9, 12, 9, 9, 13};

} // namespace

void printHistoryReport(const HistoryReport& report, std::ostream& out) {
    out << "App history: " << title(report.range) << "\n\n";
    if (report.apps.empty()) {
        out << "No history yet\n";
        return;
    }
    out << padded("Name", nameWidth, false);
    for (std::size_t i = 0; i < usageColumnTitles.size(); ++i) {
        out << padded(usageColumnTitles[i], columnWidths[i] + 2, true);
    }
    out << '\n';
    for (const AppUsage& app : report.apps) {
        out << padded(fitted(app.name, nameWidth - 1), nameWidth, false);
        const auto values = usageFigures(app.totals);
        for (std::size_t i = 0; i < values.size(); ++i) {
            out << padded(values[i], columnWidths[i] + 2, true);
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
