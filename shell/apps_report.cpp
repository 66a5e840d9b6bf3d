#include "shell/apps_report.h"

#include "core/control/process_policy.h"
#include "core/grouping/heat.h"
#include "core/grouping/process_group_json.h"
#include "core/grouping/process_grouper.h"
#include "core/grouping/row_figures.h"
#include "core/text/units_format.h"
#include "shell/terminal_text.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace loadwarden {

namespace {

using TerminalText::fitted;
using TerminalText::padded;

constexpr std::string_view memberIndent = "    ";
constexpr std::size_t nameWidth = 32;
constexpr std::size_t pidWidth = 7;

struct FigureColumn {
    std::string_view title;
    std::size_t width;
};

// CPU, memory, energy, disk, network, graphics: the table's order.
constexpr std::array<FigureColumn, 6> figureColumns{{
    {"CPU", 6},
    {"MEMORY", 9},
    {"ENERGY", 7},
    {"DISK", 11},
    {"NETWORK", 11},
    {"GPU", 6},
}};

using Figures = RowFigures;
static_assert(figureColumns.size() == figureCount);

// Heavier figures get a darker shade in front of them.
std::string_view shade(int heat) {
    constexpr std::array<std::string_view, 5> shades{" ", "░", "▒", "▓", "█"};
    return shades[static_cast<std::size_t>(heat)];
}

std::optional<double> total(const ProcessGroup& group, Heat::Metric metric) {
    switch (metric) {
    case Heat::Metric::cpu:
        return group.totalCPU();
    case Heat::Metric::memory:
        return static_cast<double>(group.totalMemory());
    case Heat::Metric::disk:
        return group.totalDisk();
    case Heat::Metric::network:
        return group.totalNetwork();
    case Heat::Metric::energy:
        return group.totalEnergy();
    case Heat::Metric::gpu:
        return group.totalGPU();
    }
    return std::nullopt;
}

std::vector<ProcessAction> allowedActions(const ProcessGroup& group) {
    std::vector<ProcessAction> actions;
    for (const ProcessAction action : allCases<ProcessAction>()) {
        if (ProcessPolicy::allows(action, group)) {
            actions.push_back(action);
        }
    }
    return actions;
}

// The actions the policy allows, or why there are none.
std::string actionsCell(const ProcessGroup& group) {
    std::string cell;
    for (const ProcessAction action : allowedActions(group)) {
        cell += (cell.empty() ? "" : ", ") + std::string(rawValue(action));
    }
    if (cell.empty()) {
        cell = std::string(ProcessPolicy::reason(group).value_or(""));
    }
    return cell;
}

void printLine(std::string_view name, std::string_view pid, const Figures& cells,
               std::string_view last, std::ostream& out) {
    std::string line =
        padded(fitted(name, nameWidth), nameWidth, false) + "  " + padded(pid, pidWidth, true);
    for (std::size_t i = 0; i < figureColumns.size(); ++i) {
        line += "  ";
        line += shade(cells[i].heat);
        line += padded(cells[i].text, figureColumns[i].width, true);
    }
    line += "  ";
    line += last;
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    out << line << '\n';
}

void printHeader(std::ostream& out) {
    Figures titles;
    for (std::size_t i = 0; i < figureColumns.size(); ++i) {
        titles[i].text = figureColumns[i].title;
    }
    printLine("NAME", "PID", titles, "ACTIONS", out);
}

} // namespace

std::vector<AppsRow> arrangeApps(std::vector<ProcessGroup> groups, const AppsOptions& options) {
    const auto sorted = ProcessGrouper::sortGroups(ProcessGrouper::filter(groups, options.search),
                                                   options.column, options.ascending);
    std::vector<AppsRow> rows;
    rows.reserve(sorted.size());
    for (const ProcessGroup& group : sorted) {
        const std::vector<LiveProcess> visible =
            ProcessGrouper::visibleMembers(group, options.search);
        AppsRow row{.group = group};
        for (LiveProcess& member :
             ProcessGrouper::sortMembers(group, options.column, options.ascending)) {
            const bool shown =
                std::any_of(visible.begin(), visible.end(), [&](const LiveProcess& v) {
                    return v.record.pid == member.record.pid;
                });
            if (shown) {
                row.shownMembers.push_back(std::move(member));
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

void printAppsReport(const std::vector<AppsRow>& rows, std::ostream& out) {
    if (rows.empty()) {
        out << "No processes match.\n";
        return;
    }
    printHeader(out);
    for (std::size_t start = 0; start < rows.size();) {
        const GroupKind kind = rows[start].group.kind;
        std::size_t end = start;
        while (end < rows.size() && rows[end].group.kind == kind) {
            ++end;
        }
        out << '\n' << sectionTitle(kind) << " (" << end - start << ")\n";
        for (; start < end; ++start) {
            const ProcessGroup& group = rows[start].group;
            printLine(group.name, std::to_string(group.leader.record.pid), groupFigures(group),
                      actionsCell(group), out);
            if (group.members.size() < 2) {
                continue; // the group's line is its one process
            }
            for (const LiveProcess& member : rows[start].shownMembers) {
                printLine(std::string(memberIndent) + member.record.name,
                          std::to_string(member.record.pid), memberFigures(member), "", out);
            }
        }
    }
}

void printAppsJSON(const std::vector<AppsRow>& rows, std::ostream& out) {
    nlohmann::json groups = nlohmann::json::array();
    for (const AppsRow& row : rows) {
        const ProcessGroup& group = row.group;
        nlohmann::json j = group;
        j["totalCPU"] = group.totalCPU();
        j["totalMemory"] = group.totalMemory();
        j["totalEnergy"] = group.totalEnergy();
        j["totalDisk"] = group.totalDisk();
        j["totalNetwork"] = group.totalNetwork();
        j["totalGPU"] = group.totalGPU();
        nlohmann::json heat;
        for (const Heat::Metric metric : allCases<Heat::Metric>()) {
            heat[std::string(rawValue(metric))] = Heat::level(total(group, metric), metric);
        }
        j["heat"] = std::move(heat);
        j["allowedActions"] = allowedActions(group);
        j["reason"] = ProcessPolicy::reason(group);
        nlohmann::json shown = nlohmann::json::array();
        for (const LiveProcess& member : row.shownMembers) {
            shown.push_back(member.record.pid);
        }
        j["shownMembers"] = std::move(shown);
        groups.push_back(std::move(j));
    }
    // Names come from the processes themselves and may hold bytes that are
    // not UTF-8; they are replaced rather than fail the output.
    out << groups.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

} // namespace loadwarden
