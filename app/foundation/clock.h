#pragma once

#include "core/foundation/date.h"

#include <functional>

namespace loadwarden {

// The wall clock as a Date; the one place the app layer reads it.
Date currentDate();

// Where an object reads the date: the wall clock, or a test's own.
using Clock = std::function<Date()>;

} // namespace loadwarden
