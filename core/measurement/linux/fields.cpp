#include "core/measurement/linux/fields.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

std::vector<std::string_view> splitFields(std::string_view text) {
    std::vector<std::string_view> fields;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && isBlank(text[i])) {
            ++i;
        }
        const std::size_t start = i;
        while (i < text.size() && !isBlank(text[i])) {
            ++i;
        }
        if (i > start) {
            fields.push_back(text.substr(start, i - start));
        }
    }
    return fields;
}

std::string_view keyedValue(std::string_view text, std::string_view key) {
    std::string_view found;
    bool seen = false;
    forEachLine(text, [&](std::string_view line) {
        if (!seen && line.size() > key.size() && startsWith(line, key) && line[key.size()] == ':') {
            found = trimWhitespace(line.substr(key.size() + 1));
            seen = true;
        }
    });
    return found;
}

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

} // namespace loadwarden
