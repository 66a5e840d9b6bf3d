#pragma once

#include "app/sampling/darwin/darwin_graphics.h"
#include "app/sampling/darwin/darwin_processes.h"
#include "app/sampling/darwin/darwin_system.h"
#include "app/sampling/platform_backend.h"

namespace loadwarden {

using DarwinBackend = PlatformBackend<DarwinProcesses, DarwinSystem, DarwinGraphics>;

} // namespace loadwarden
