#include "app/foundation/darwin/cf_values.h"

#include <vector>

namespace loadwarden {

CFTypeRef CFValues::value(CFTypeRef dictionary, CFStringRef key) {
    if (dictionary == nullptr || CFGetTypeID(dictionary) != CFDictionaryGetTypeID()) {
        return nullptr;
    }
    return CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key);
}

std::optional<double> CFValues::number(CFTypeRef value) {
    double result = 0.0;
    if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &result)) {
        return std::nullopt;
    }
    return result;
}

std::optional<std::int64_t> CFValues::integer(CFTypeRef value) {
    std::int64_t result = 0;
    if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID() ||
        !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &result)) {
        return std::nullopt;
    }
    return result;
}

std::optional<bool> CFValues::boolean(CFTypeRef value) {
    if (value == nullptr || CFGetTypeID(value) != CFBooleanGetTypeID()) {
        return std::nullopt;
    }
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

std::string CFValues::string(CFTypeRef value) {
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

CFValues::Owned<CFStringRef> CFValues::makeString(const std::string& utf8) {
    return Owned<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

CFValues::Owned<CFURLRef> CFValues::fileURL(const std::string& path, bool isDirectory) {
    return Owned<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.c_str()),
        static_cast<CFIndex>(path.size()), isDirectory));
}

} // namespace loadwarden
