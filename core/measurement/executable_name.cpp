#include "core/measurement/executable_name.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

std::string executableName(std::string_view path, std::string_view command) {
    std::string_view source = trimWhitespace(path.empty() ? command : path);
    while (source.size() > 1 && source.back() == '/') {
        source.remove_suffix(1);
    }
    const std::size_t slash = source.rfind('/');
    return std::string(
        slash == std::string_view::npos || source.size() == 1 ? source : source.substr(slash + 1));
}

} // namespace loadwarden
