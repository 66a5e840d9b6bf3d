#include "core/codesign/code_info.h"

#include "core/text/platform_wording.h"

#include <array>

namespace loadwarden {

CodeInfo::Signer signerFromSummary(std::string_view summary) {
    // Tested first on purpose: "Apple Development: …" is Apple's, not a developer.
    if (summary.starts_with("Apple") || summary.starts_with("Software Signing")) {
        return {CodeInfo::Signer::Kind::apple, {}};
    }
    std::string developer(summary);
    constexpr std::array<std::string_view, 3> kinds{
        "Developer ID Application: ", "Apple Development: ", "Apple Distribution: "};
    for (const std::string_view kind : kinds) {
        for (auto at = developer.find(kind); at != std::string::npos; at = developer.find(kind)) {
            developer.erase(at, kind.size());
        }
    }
    return {CodeInfo::Signer::Kind::developer, std::move(developer)};
}

std::string signerText(const CodeInfo::Signer& signer) {
    switch (signer.kind) {
    case CodeInfo::Signer::Kind::developer:
        return signer.developer;
    case CodeInfo::Signer::Kind::apple:
        return "Apple";
    case CodeInfo::Signer::Kind::adHoc:
        return "Ad hoc (no developer)";
    case CodeInfo::Signer::Kind::unsigned_:
        break;
    }
    return std::string(onThisPlatform("Unsigned", "Not from a package"));
}

} // namespace loadwarden
