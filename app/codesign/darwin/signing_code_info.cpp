#include "app/codesign/code_info_cache.h"

#include <Security/Security.h>

namespace loadwarden {

namespace {

constexpr std::uint32_t adHocFlag = 2; // of the code directory flags

// Releases a Core Foundation object when the scope ends.
template <typename Ref>
struct Owned {
    Ref ref = nullptr;
    ~Owned() {
        if (ref) {
            CFRelease(ref);
        }
    }
};

std::string utf8(CFStringRef text) {
    if (!text) {
        return {};
    }
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (!CFStringGetCString(text, bytes.data(), size, kCFStringEncodingUTF8)) {
        return {};
    }
    bytes.resize(std::char_traits<char>::length(bytes.c_str()));
    return bytes;
}

template <typename Ref>
Ref valueOf(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
    const CFTypeRef value = CFDictionaryGetValue(dictionary, key);
    return value && CFGetTypeID(value) == type ? static_cast<Ref>(value) : nullptr;
}

CodeInfo::Signer signerOf(CFDictionaryRef information) {
    if (const auto flags = valueOf<CFNumberRef>(information, kSecCodeInfoFlags, CFNumberGetTypeID())) {
        std::uint32_t value = 0;
        if (CFNumberGetValue(flags, kCFNumberSInt32Type, &value) && (value & adHocFlag) != 0) {
            return {CodeInfo::Signer::Kind::adHoc, {}};
        }
    }
    if (CFDictionaryGetValue(information, kSecCodeInfoPlatformIdentifier)) {
        return {CodeInfo::Signer::Kind::apple, {}};
    }
    const auto certificates =
        valueOf<CFArrayRef>(information, kSecCodeInfoCertificates, CFArrayGetTypeID());
    if (!certificates || CFArrayGetCount(certificates) == 0) {
        return {};
    }
    const auto first = (SecCertificateRef)CFArrayGetValueAtIndex(certificates, 0);
    const Owned<CFStringRef> summary{SecCertificateCopySubjectSummary(first)};
    return signerFromSummary(utf8(summary.ref));
}

} // namespace

CodeInfo readCodeInfo(const std::string& path) {
    const Owned<CFURLRef> url{CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(path.c_str()),
        static_cast<CFIndex>(path.size()), false)};
    Owned<SecStaticCodeRef> code;
    if (!url.ref || SecStaticCodeCreateWithPath(url.ref, kSecCSDefaultFlags, &code.ref) !=
                        errSecSuccess) {
        return {};
    }
    Owned<CFDictionaryRef> information;
    if (SecCodeCopySigningInformation(code.ref, kSecCSSigningInformation, &information.ref) !=
            errSecSuccess ||
        !information.ref) {
        return {};
    }
    CodeInfo info{.signer = signerOf(information.ref), .sandboxed = false};
    if (const auto entitlements = valueOf<CFDictionaryRef>(
            information.ref, kSecCodeInfoEntitlementsDict, CFDictionaryGetTypeID())) {
        info.sandboxed = CFDictionaryGetValue(entitlements, CFSTR("com.apple.security.app-sandbox")) ==
                         kCFBooleanTrue;
    }
    return info;
}

} // namespace loadwarden
