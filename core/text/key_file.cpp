#include "core/text/key_file.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

KeyFileGroup keyFileGroup(std::string_view text, std::string_view group) {
    KeyFileGroup keys;
    bool inGroup = false;
    bool seenGroup = false;
    forEachLine(text, [&](std::string_view rawLine) {
        const std::string_view line = trimWhitespace(rawLine);
        if (line.empty() || line.front() == '#') {
            return;
        }
        if (line.front() == '[') {
            inGroup = !seenGroup && line.size() == group.size() + 2 && line.back() == ']' &&
                      line.substr(1, group.size()) == group;
            seenGroup = seenGroup || inGroup;
            return;
        }
        const std::size_t equals = line.find('=');
        if (inGroup && equals != std::string_view::npos) {
            keys[std::string(trimWhitespace(line.substr(0, equals)))].emplace_back(
                trimWhitespace(line.substr(equals + 1)));
        }
    });
    return keys;
}

std::optional<std::string_view> lastValue(const KeyFileGroup& group, std::string_view key) {
    const auto found = group.find(key);
    if (found == group.end() || found->second.empty()) {
        return std::nullopt;
    }
    return found->second.back();
}

std::string unescapedValue(std::string_view value) {
    std::string out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        switch (value[++i]) {
        case 's':
            out += ' ';
            break;
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        default:
            out += value[i];
        }
    }
    return out;
}

} // namespace loadwarden
