#include "app/codesign/code_info_cache.h"

#include "app/foundation/user_files.h"
#include "core/codesign/linux/package_index.h"

namespace loadwarden {

namespace {

constexpr const char* dpkgLists = "/var/lib/dpkg/info";

// Every package's file list, read on the first question, kept for the
// program's life.
const PackageIndex& packages() {
    static const PackageIndex index = [] {
        PackageIndex built;
        for (const auto& [name, list] : filesIn(dpkgLists, ".list")) {
            built.addDpkgList(name, fileText(list).value_or(std::string()));
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
