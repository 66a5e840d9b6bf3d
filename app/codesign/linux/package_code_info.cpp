#include "app/codesign/code_info_cache.h"

#include "app/foundation/user_files.h"
#include "core/codesign/linux/package_index.h"

#include <filesystem>
#include <system_error>

namespace loadwarden {

namespace {

constexpr const char* dpkgLists = "/var/lib/dpkg/info";

// Every package's file list, read on the first question, kept for the
// program's life.
const PackageIndex& packages() {
    static const PackageIndex index = [] {
        PackageIndex built;
        std::error_code error;
        for (auto entry = std::filesystem::directory_iterator(dpkgLists, error);
             !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
            const std::string name = entry->path().filename().string();
            if (name.ends_with(".list")) {
                built.addDpkgList(name, fileText(entry->path()).value_or(std::string()));
            }
        }
        return built;
    }();
    return index;
}

} // namespace

CodeInfo readCodeInfo(const std::string& path) {
    if (auto app = sandboxedAppInfo(path)) {
        return *app;
    }
    if (const auto package = packages().packageOf(path)) {
        return packageInfo(*package);
    }
    return {};
}

} // namespace loadwarden
