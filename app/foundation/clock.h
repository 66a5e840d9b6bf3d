#pragma once

#include "core/foundation/date.h"

namespace loadwarden {

// The wall clock as a Date; the one place the app layer reads it.
Date currentDate();

} // namespace loadwarden
