#include "app/foundation/user_files.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace loadwarden {

std::optional<std::string> fileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << file.rdbuf();
    return file.bad() ? std::nullopt : std::optional(text.str());
}

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const std::string_view value = environment(name); !value.empty()) {
            return std::string(value);
        }
    }
    return {};
}

} // namespace loadwarden
