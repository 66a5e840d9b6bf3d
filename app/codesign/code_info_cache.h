#pragma once

#include "core/codesign/code_info.h"

#include <mutex>
#include <string>
#include <unordered_map>

namespace loadwarden {

// Who made each executable, read once per path: reading a signature or the
// package lists is slow beside a refresh. Safe to ask from any thread; one
// reading at a time.
class CodeInfoCache {
public:
    CodeInfo info(const std::string& path);

private:
    std::mutex mutex_;
    std::unordered_map<std::string, CodeInfo> cache_;
};

// The uncached reading of the system this program was built for.
CodeInfo readCodeInfo(const std::string& path);

} // namespace loadwarden
