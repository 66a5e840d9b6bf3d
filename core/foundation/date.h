#pragma once

namespace loadwarden {

// Dates are seconds since 1970-01-01 UTC with a sub-second fraction; core code
// never reads a clock, callers pass them in.
using Date = double;

// A span of time in seconds.
using Seconds = double;

} // namespace loadwarden
