#pragma once

#include "core/measurement/system_sample.h"

#include <cstddef>
#include <string>

namespace loadwarden {

// The whole machine at a glance, under the process table:
// "312 processes · CPU 23% · Memory 7.1 GB of 16 GB".
std::string machineSummary(std::size_t processes, const SystemSample& sample);

} // namespace loadwarden
