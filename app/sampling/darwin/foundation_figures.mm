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

std::optional<DiskSpace> FoundationFigures::startupVolumeSpace() {
    @autoreleasepool {
        NSURL* root = [NSURL fileURLWithPath:@"/" isDirectory:YES];
        NSDictionary<NSURLResourceKey, id>* values = [root resourceValuesForKeys:@[
            NSURLVolumeAvailableCapacityForImportantUsageKey, NSURLVolumeTotalCapacityKey
        ]
                                                                           error:nil];
        NSNumber* available = values[NSURLVolumeAvailableCapacityForImportantUsageKey];
        NSNumber* total = values[NSURLVolumeTotalCapacityKey];
        if (available == nil || total == nil) {
            return std::nullopt;
        }
        return DiskSpace{available.unsignedLongLongValue, total.unsignedLongLongValue};
    }
}

} // namespace loadwarden
