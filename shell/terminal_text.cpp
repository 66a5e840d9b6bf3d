#include "shell/terminal_text.h"

namespace loadwarden::TerminalText {

namespace {

bool startsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

} // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const char byte : text) {
        width += startsCharacter(byte) ? 1 : 0;
    }
    return width;
}

std::string padded(std::string_view text, std::size_t width, bool rightAligned) {
    const std::size_t shown = displayWidth(text);
    const std::string padding(shown < width ? width - shown : 0, ' ');
    return rightAligned ? padding + std::string(text) : std::string(text) + padding;
}

std::string fitted(std::string_view text, std::size_t width) {
    if (width == 0) {
        return {};
    }
    if (displayWidth(text) <= width) {
        return std::string(text);
    }
    // Keep width - 1 characters and the tilde.
    std::size_t cut = 0;
    for (std::size_t kept = 0; cut < text.size(); ++cut) {
        if (startsCharacter(text[cut]) && kept++ == width - 1) {
            break;
        }
    }
    return std::string(text.substr(0, cut)) + "~";
}

} // namespace loadwarden::TerminalText
