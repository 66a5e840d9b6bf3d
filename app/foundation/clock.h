#pragma once

#include "core/foundation/date.h"

#include <functional>

namespace loadwarden {

// The wall clock as a Date; the one place the app layer reads it.
Date currentDate();

// Seconds of a clock that never jumps, for the time between two readings.
Seconds monotonicSeconds();

// Where an object reads the date: the wall clock, or a test's own.
using Clock = std::function<Date()>;

} // namespace loadwarden
