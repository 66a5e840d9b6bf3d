#include "core/codesign/linux/package_index.h"

#include "core/text/text_parsing.h"


namespace loadwarden {

namespace {

constexpr std::string_view listSuffix = ".list";
constexpr std::string_view mergedPrefix = "/usr";

// The segment after `marker` up to the next slash.
std::optional<std::string> segmentAfter(std::string_view path, std::string_view marker) {
    const auto at = path.find(marker);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view rest = path.substr(at + marker.size());
    rest = rest.substr(0, rest.find('/'));
    return rest.empty() ? std::nullopt : std::optional(std::string(rest));
}

CodeInfo developer(std::string name) {
    return {{CodeInfo::Signer::Kind::developer, std::move(name)}, false};
}

} // namespace

void PackageIndex::addDpkgList(std::string_view fileName, std::string_view text) {
    if (!fileName.ends_with(listSuffix)) {
        return;
    }
    std::string_view package = fileName.substr(0, fileName.size() - listSuffix.size());
    package = package.substr(0, package.find(':'));
    if (package.empty()) {
        return;
    }
    packages_.emplace_back(package);
    forEachLine(text, [this](std::string_view line) {
        if (line.starts_with('/')) {
            owners_.try_emplace(std::string(line), packages_.size() - 1);
        }
    });
}

std::optional<std::string> PackageIndex::packageOf(std::string_view path) const {
    auto found = owners_.find(std::string(path));
    if (found == owners_.end() && path.starts_with(mergedPrefix)) {
        found = owners_.find(std::string(path.substr(mergedPrefix.size())));
    }
    if (found == owners_.end()) {
        found = owners_.find(std::string(mergedPrefix) + std::string(path));
    }
    if (found == owners_.end()) {
        return std::nullopt;
    }
    return packages_[found->second];
}

std::optional<CodeInfo> sandboxedAppInfo(std::string_view path) {
    if (auto app = segmentAfter(path, "/flatpak/app/")) {
        CodeInfo info = developer(*app + " (Flatpak)");
        info.sandboxed = true;
        return info;
    }
    if (path.starts_with("/snap/")) {
        if (auto snap = segmentAfter(path, "/snap/")) {
            CodeInfo info = developer(*snap + " (Snap)");
            info.sandboxed = true;
            return info;
        }
    }
    return std::nullopt;
}

CodeInfo packageInfo(const std::string& package) {
    return developer(package + " (package)");
}

} // namespace loadwarden
