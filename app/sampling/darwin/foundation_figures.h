#pragma once

#include "core/measurement/thermal.h"

namespace loadwarden::FoundationFigures {

// The system's thermal state.
ThermalLevel thermalLevel();

bool lowPowerMode();

} // namespace loadwarden::FoundationFigures
