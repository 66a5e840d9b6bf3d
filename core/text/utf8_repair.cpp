#include "core/text/utf8_repair.h"

namespace loadwarden {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

struct SequenceShape {
    std::size_t length = 0; // 0: the byte can never begin a sequence
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
};

// The second byte's narrower range rules out overlong forms, surrogates and
// code points past U+10FFFF.
SequenceShape shapeOf(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {2};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return {3, static_cast<unsigned char>(lead == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(lead == 0xED ? 0x9F : 0xBF)};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return {4, static_cast<unsigned char>(lead == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(lead == 0xF4 ? 0x8F : 0xBF)};
    }
    return {};
}

} // namespace

std::string repairUTF8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    std::size_t index = 0;
    while (index < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[index]);
        if (lead < 0x80) {
            text.push_back(static_cast<char>(lead));
            ++index;
            continue;
        }
        const SequenceShape shape = shapeOf(lead);
        std::size_t valid = 1;
        while (valid < shape.length && index + valid < bytes.size()) {
            const auto next = static_cast<unsigned char>(bytes[index + valid]);
            const unsigned char low = valid == 1 ? shape.secondLow : 0x80;
            const unsigned char high = valid == 1 ? shape.secondHigh : 0xBF;
            if (next < low || next > high) {
                break;
            }
            ++valid;
        }
        if (shape.length != 0 && valid == shape.length) {
            text.append(bytes.substr(index, valid));
        } else {
            text.append(replacementCharacter);
        }
        index += valid;
    }
    return text;
}

} // namespace loadwarden
