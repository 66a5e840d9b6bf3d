#include "app/sampling/darwin/registry.h"

namespace loadwarden {

bool Registry::forEachService(const char* className,
                              const std::function<void(io_object_t)>& visit) {
    io_iterator_t services = 0;
    // The matching dictionary is consumed by the call.
    if (IOServiceGetMatchingServices(kIOMainPortDefault, IOServiceMatching(className), &services) !=
        KERN_SUCCESS) {
        return false;
    }
    while (const io_object_t service = IOIteratorNext(services)) {
        visit(service);
        IOObjectRelease(service);
    }
    IOObjectRelease(services);
    return true;
}

CFValues::Owned<> Registry::property(io_object_t service, CFStringRef key) {
    return CFValues::Owned<>(IORegistryEntryCreateCFProperty(service, key, kCFAllocatorDefault, 0));
}

} // namespace loadwarden
