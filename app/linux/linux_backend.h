#pragma once

#include "app/linux/linux_processes.h"
#include "app/linux/linux_system.h"
#include "app/platform_backend.h"

namespace loadwarden {

using LinuxBackend = PlatformBackend<LinuxProcesses, LinuxSystem>;

} // namespace loadwarden
