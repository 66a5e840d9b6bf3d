#include "app/foundation/program_path.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <mach-o/dyld.h>
#include <system_error>

namespace loadwarden {

std::optional<std::string> programPath() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size); // says how much room the path needs
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return std::nullopt;
    }
    path.resize(std::strlen(path.c_str()));
    // The path it was started by, which may be a link such as one in
    // /usr/local/bin; the file itself lies where the link leads.
    std::error_code error;
    const auto file = std::filesystem::canonical(path, error);
    if (error) {
        return std::nullopt;
    }
    return file.string();
}

} // namespace loadwarden
