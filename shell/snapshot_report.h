#pragma once

#include "app/sampling/snapshot.h"

#include <iosfwd>
#include <string_view>

namespace loadwarden {

// The readable report: a table of every process, busiest first, then the
// system's figures. The coverage note says what the network column leaves out.
void printSnapshotReport(const Snapshot& snapshot, std::string_view networkCoverageNote,
                         std::ostream& out);

// The snapshot as JSON: keys are the field names, absent values null, dates
// seconds since 1970.
void printSnapshotJSON(const Snapshot& snapshot, std::ostream& out);

} // namespace loadwarden
