#include "app/codesign/code_info_cache.h"

namespace loadwarden {

CodeInfo CodeInfoCache::info(const std::string& path) {
    const std::lock_guard lock(mutex_);
    if (const auto known = cache_.find(path); known != cache_.end()) {
        return known->second;
    }
    return cache_.emplace(path, readCodeInfo(path)).first->second;
}

} // namespace loadwarden
