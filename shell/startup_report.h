#pragma once

#include "core/startup/startup_rows.h"

#include <iosfwd>
#include <vector>

namespace loadwarden {

// The items as the Startup apps tab shows them: name, kind, how it runs,
// status, impact.
void printStartupReport(const std::vector<StartupRow>& rows, std::ostream& out);

// Each item with its fields, its impact and the tab's texts.
void printStartupJSON(const std::vector<StartupRow>& rows, std::ostream& out);

} // namespace loadwarden
