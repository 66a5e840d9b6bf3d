#pragma once

#include "app/sampling/sampler_backend.h"
#include "core/measurement/thermal.h"

#include <optional>

namespace loadwarden::FoundationFigures {

// The system's thermal state.
ThermalLevel thermalLevel();

bool lowPowerMode();

// The start-up volume: capacity available for important use, and its total.
std::optional<DiskSpace> startupVolumeSpace();

} // namespace loadwarden::FoundationFigures
