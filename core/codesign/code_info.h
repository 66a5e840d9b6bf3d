#pragma once

#include "core/foundation/hashing.h"

#include <string>
#include <string_view>
#include <tuple>

namespace loadwarden {

// Who made an executable and whether it runs in a sandbox. On macOS from its
// code signature; on Linux from the package that installed it, or the
// Flatpak or Snap app it belongs to.
struct CodeInfo {
    struct Signer {
        enum class Kind { developer, apple, adHoc, unsigned_ };
        Kind kind = Kind::unsigned_;
        std::string developer; // the developer's (on Linux the package's) name

        bool operator==(const Signer&) const = default;
        auto fields() const { return std::tie(kind, developer); }
    };

    Signer signer;
    bool sandboxed = false;

    bool operator==(const CodeInfo&) const = default;
    auto fields() const { return std::tie(signer, sandboxed); }
};

// The signer a certificate's subject summary names: Apple's own certificates
// (whatever follows "Apple") or a developer, without the certificate kind.
CodeInfo::Signer signerFromSummary(std::string_view summary);

// As the Details tab shows it: the name, "Apple", "Ad hoc (no developer)",
// or that nobody vouches for it.
std::string signerText(const CodeInfo::Signer& signer);

} // namespace loadwarden
