#include "core/measurement/linux/fields.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

std::string_view FieldCursor::next() {
    std::size_t start = 0;
    while (start < rest_.size() && isBlank(rest_[start])) {
        ++start;
    }
    std::size_t end = start;
    while (end < rest_.size() && !isBlank(rest_[end])) {
        ++end;
    }
    const std::string_view field = rest_.substr(start, end - start);
    rest_.remove_prefix(end);
    return field;
}

std::vector<std::string_view> splitFields(std::string_view text) {
    std::vector<std::string_view> fields;
    FieldCursor cursor(text);
    for (std::string_view field = cursor.next(); !field.empty(); field = cursor.next()) {
        fields.push_back(field);
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
