#include "app/sampling/darwin/registry.h"

#include <vector>

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

Registry::Owned Registry::property(io_object_t service, CFStringRef key) {
    return Owned(IORegistryEntryCreateCFProperty(service, key, kCFAllocatorDefault, 0));
}

CFTypeRef Registry::value(CFTypeRef dictionary, CFStringRef key) {
    if (dictionary == nullptr || CFGetTypeID(dictionary) != CFDictionaryGetTypeID()) {
        return nullptr;
    }
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key);
}

std::optional<double> Registry::number(CFTypeRef value) {
    double result = 0.0;
    if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &result)) {
        return std::nullopt;
    }
    return result;
}

std::optional<std::int64_t> Registry::integer(CFTypeRef value) {
    std::int64_t result = 0;
    if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &result)) {
        return std::nullopt;
    }
    return result;
}

std::optional<bool> Registry::boolean(CFTypeRef value) {
    if (value == nullptr || CFGetTypeID(value) != CFBooleanGetTypeID()) {
        return std::nullopt;
    }
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

std::string Registry::string(CFTypeRef value) {
    if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) {
        return {};
    }
    const auto text = static_cast<CFStringRef>(value);
    const CFIndex capacity =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
    std::vector<char> buffer(static_cast<std::size_t>(capacity));
    if (!CFStringGetCString(text, buffer.data(), capacity, kCFStringEncodingUTF8)) {
        return {};
    }
    return std::string(buffer.data());
}

} // namespace loadwarden
