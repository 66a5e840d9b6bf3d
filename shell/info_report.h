#pragma once

#include "core/codesign/code_info.h"
#include "core/measurement/file_info.h"
#include "core/measurement/process_record.h"

#include <iosfwd>
#include <optional>

namespace loadwarden {

struct InfoReport {
    LiveProcess process;
    CodeInfo code;
    std::optional<FileInfo> files; // absent for another user's process
};

// One line per fact; a dash where the system gives no figure.
void printInfoReport(const InfoReport& report, std::ostream& out);

// {process: {record, rates}, codeInfo: {signer, sandboxed}, fileInfo}.
void printInfoJSON(const InfoReport& report, std::ostream& out);

} // namespace loadwarden
