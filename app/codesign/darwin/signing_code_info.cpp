#include "app/codesign/code_info_cache.h"
#include "app/foundation/darwin/cf_values.h"

// The umbrella header pulls in parts Apple ships only privately.
#include <Security/SecCertificate.h>
#include <Security/SecCode.h>
#include <Security/SecStaticCode.h>

namespace loadwarden {

namespace {

constexpr std::uint32_t adHocFlag = 2; // of the code directory flags

template <typename Ref>
Ref valueOf(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
    const CFTypeRef value = CFDictionaryGetValue(dictionary, key);
    return value && CFGetTypeID(value) == type ? static_cast<Ref>(value) : nullptr;
}

CodeInfo::Signer signerOf(CFDictionaryRef information) {
    if (const auto flags =
            valueOf<CFNumberRef>(information, kSecCodeInfoFlags, CFNumberGetTypeID())) {
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
    const CFValues::Owned<CFStringRef> summary{SecCertificateCopySubjectSummary(first)};
    return signerFromSummary(CFValues::string(summary.get()));
}

} // namespace

CodeInfo readCodeInfo(const std::string& path) {
    const auto url = CFValues::fileURL(path, false);
    CFValues::Owned<SecStaticCodeRef> code;
    if (!url.get() || SecStaticCodeCreateWithPath(url.get(), kSecCSDefaultFlags, code.receive()) !=
                          errSecSuccess) {
        return {};
    }
    CFValues::Owned<CFDictionaryRef> information;
    if (SecCodeCopySigningInformation(code.get(), kSecCSSigningInformation,
                                      information.receive()) != errSecSuccess ||
        !information.get()) {
        return {};
    }
    CodeInfo info{.signer = signerOf(information.get()), .sandboxed = false};
    if (const auto entitlements = valueOf<CFDictionaryRef>(
            information.get(), kSecCodeInfoEntitlementsDict, CFDictionaryGetTypeID())) {
        info.sandboxed =
            CFDictionaryGetValue(entitlements, CFSTR("com.apple.security.app-sandbox")) ==
            kCFBooleanTrue;
    }
    return info;
}

} // namespace loadwarden
