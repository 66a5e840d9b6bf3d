#pragma once

// Reading Core Foundation values out of the IOKit registry and the power
// sources, without leaking a reference.

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace loadwarden::Registry {

// Owns one Core Foundation reference.
class Owned {
public:
    explicit Owned(CFTypeRef value = nullptr) : value_(value) {}
    ~Owned() {
        if (value_ != nullptr) {
            CFRelease(value_);
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    CFTypeRef get() const { return value_; }

private:
    CFTypeRef value_;
};

// Calls visit for every registry service of an IOKit class; false when the
// registry could not be asked.
bool forEachService(const char* className, const std::function<void(io_object_t)>& visit);

// One property of a service, owned by the caller.
Owned property(io_object_t service, CFStringRef key);

// A value of a dictionary (not owned); null when the dictionary or key is missing.
CFTypeRef value(CFTypeRef dictionary, CFStringRef key);

std::optional<double> number(CFTypeRef value);
std::optional<std::int64_t> integer(CFTypeRef value);
std::optional<bool> boolean(CFTypeRef value);
std::string string(CFTypeRef value);

} // namespace loadwarden::Registry
