#pragma once

#include "core/history/usage_history.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace loadwarden {

struct HistoryReport {
    HistoryRange range = HistoryRange::today;
    std::vector<AppUsage> apps; // most processor time first
    std::string home;           // shortens the tools' folders
};

// A table of the apps' totals, or "No history yet".
void printHistoryReport(const HistoryReport& report, std::ostream& out);

// {"days": N, "apps": [{key, name, totals, folder}]}.
void printHistoryJSON(const HistoryReport& report, std::ostream& out);

} // namespace loadwarden
