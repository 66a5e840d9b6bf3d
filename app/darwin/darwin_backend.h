#pragma once

#include "app/darwin/darwin_processes.h"
#include "app/darwin/darwin_system.h"
#include "app/platform_backend.h"

namespace loadwarden {

using DarwinBackend = PlatformBackend<DarwinProcesses, DarwinSystem>;

} // namespace loadwarden
