#include "app/foundation/program_path.h"

#include <filesystem>
#include <system_error>

namespace loadwarden {

std::optional<std::string> programPath() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        return std::nullopt;
    }
    return path.string();
}

} // namespace loadwarden
