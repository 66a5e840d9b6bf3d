#pragma once

// Plain values out of Core Foundation objects, without leaking a reference.

#include <CoreFoundation/CoreFoundation.h>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace loadwarden::CFValues {

// Owns one Core Foundation reference.
template <typename Ref = CFTypeRef>
class Owned {
public:
    explicit Owned(Ref value = nullptr) : value_(value) {}
    ~Owned() {
        if (value_ != nullptr) {
            CFRelease(value_);
        }
    }
    Owned(Owned&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    Owned& operator=(Owned&&) = delete;

    Ref get() const { return value_; }
    // For a call that hands its new reference back through a pointer.
    Ref* receive() { return &value_; }

private:
    Ref value_;
};

// A value of a dictionary (not owned); null when the dictionary or key is missing.
CFTypeRef value(CFTypeRef dictionary, CFStringRef key);

std::optional<double> number(CFTypeRef value);
std::optional<std::int64_t> integer(CFTypeRef value);
std::optional<bool> boolean(CFTypeRef value);
// Empty for anything but a string.
std::string string(CFTypeRef value);

Owned<CFStringRef> makeString(const std::string& utf8);
Owned<CFURLRef> fileURL(const std::string& path, bool isDirectory);

} // namespace loadwarden::CFValues
