#pragma once

#include "app/sampling/linux/linux_graphics.h"
#include "app/sampling/linux/linux_processes.h"
#include "app/sampling/linux/linux_system.h"
#include "app/sampling/platform_backend.h"

namespace loadwarden {

using LinuxBackend = PlatformBackend<LinuxProcesses, LinuxSystem, LinuxGraphics>;

} // namespace loadwarden
