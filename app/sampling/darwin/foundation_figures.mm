#include "app/sampling/darwin/foundation_figures.h"

#import <Foundation/Foundation.h>

namespace loadwarden {

ThermalLevel FoundationFigures::thermalLevel() {
    switch ([[NSProcessInfo processInfo] thermalState]) {
    case NSProcessInfoThermalStateNominal:
        return ThermalLevel::nominal;
    case NSProcessInfoThermalStateFair:
        return ThermalLevel::fair;
    case NSProcessInfoThermalStateSerious:
        return ThermalLevel::serious;
    case NSProcessInfoThermalStateCritical:
        return ThermalLevel::critical;
    }
    return ThermalLevel::nominal;
}

bool FoundationFigures::lowPowerMode() {
    return [[NSProcessInfo processInfo] isLowPowerModeEnabled];
}

} // namespace loadwarden
