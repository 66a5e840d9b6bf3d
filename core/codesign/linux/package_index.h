#pragma once

#include "core/codesign/code_info.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// Which distribution package installed each file, from the package
// manager's own lists (one per package, a path per line), read once.
class PackageIndex {
public:
    // dpkg's "NAME.list" or "NAME:ARCH.list" file name and its text.
    void addDpkgList(std::string_view fileName, std::string_view text);

    // Systems that moved /bin, /sbin and /lib into /usr list files by
    // either name; both are tried.
    std::optional<std::string> packageOf(std::string_view path) const;

private:
    std::vector<std::string> packages_;
    std::unordered_map<std::string, std::size_t> owners_; // path → index in packages_
};

// A Flatpak or Snap app, which runs sandboxed, from where its executable lies.
std::optional<CodeInfo> sandboxedAppInfo(std::string_view path);

// The package's name as the Details tab shows it.
CodeInfo packageInfo(const std::string& package);

} // namespace loadwarden
