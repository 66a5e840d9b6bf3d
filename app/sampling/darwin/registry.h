#pragma once

// Services of the IOKit registry and their properties.

#include "app/foundation/darwin/cf_values.h"

#include <IOKit/IOKitLib.h>
#include <functional>

namespace loadwarden::Registry {

// Calls visit for every registry service of an IOKit class; false when the
// registry could not be asked.
bool forEachService(const char* className, const std::function<void(io_object_t)>& visit);

// One property of a service, owned by the caller.
CFValues::Owned<> property(io_object_t service, CFStringRef key);

} // namespace loadwarden::Registry
