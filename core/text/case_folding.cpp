#include "core/text/case_folding.h"

namespace loadwarden {

namespace {

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

void appendUTF8(std::string& out, char32_t c) {
    if (c >= invalidByteBase) {
        out += static_cast<char>(c - invalidByteBase);
    } else if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// In Latin Extended-A capitals and small letters alternate; which of the two
// comes first flips twice.
char32_t lowercasedLatinExtendedA(char32_t c) {
    const bool evenIsCapital = (c <= 0x0137) || (c >= 0x014A && c <= 0x0177);
    const bool oddIsCapital = (c >= 0x0139 && c <= 0x0148) || (c >= 0x0179 && c <= 0x017E);
    if ((evenIsCapital && c % 2 == 0) || (oddIsCapital && c % 2 == 1)) {
        return c + 1;
    }
    return c;
}

} // namespace

char32_t nextCodePoint(std::string_view text, std::size_t& index) {
    const auto lead = static_cast<unsigned char>(text[index]);
    std::size_t length = 0;
    char32_t c = 0;
    if (lead < 0x80) {
        ++index;
        return lead;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        c = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        c = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        c = lead & 0x07;
    }
    if (length == 0 || index + length > text.size()) {
        ++index;
        return invalidByteBase + lead;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[index + i]);
        if (!isContinuation(byte)) {
            ++index;
            return invalidByteBase + lead;
        }
        c = (c << 6) | (byte & 0x3F);
    }
    constexpr char32_t smallestOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    if (c < smallestOfLength[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        ++index;
        return invalidByteBase + lead;
    }
    index += length;
    return c;
}

char32_t lowercased(char32_t c) {
    if (c >= 'A' && c <= 'Z') {
        return c + 0x20;
    }
    if (c < 0xC0) {
        return c;
    }
    if (c <= 0xDE) {
        return c == 0xD7 ? c : c + 0x20; // 0xD7 is the multiplication sign
    }
    if (c >= 0x0100 && c <= 0x017F) {
        if (c == 0x0130) {
            return 'i'; // capital I with dot above
        }
        if (c == 0x0178) {
            return 0x00FF; // capital Y with diaeresis
        }
        return lowercasedLatinExtendedA(c);
    }
    if (c == 0x0386) {
        return 0x03AC;
    }
    if (c >= 0x0388 && c <= 0x038A) {
        return c + 0x25;
    }
    if (c == 0x038C) {
        return 0x03CC;
    }
    if (c == 0x038E || c == 0x038F) {
        return c + 0x3F;
    }
    if (c >= 0x0391 && c <= 0x03A9 && c != 0x03A2) {
        return c + 0x20;
    }
    if (c >= 0x0400 && c <= 0x040F) {
        return c + 0x50;
    }
    if (c >= 0x0410 && c <= 0x042F) {
        return c + 0x20;
    }
    return c;
}

bool isUppercase(char32_t c) {
    return lowercased(c) != c;
}

bool isLowercase(char32_t c) {
    // The small letters of the same blocks: what no capital folds into is
    // left out (ß and ÿ have no capital in the folding but are small letters).
    return (c >= 'a' && c <= 'z') || (c >= 0xDF && c <= 0xFF && c != 0xF7) ||
           (c >= 0x0100 && c <= 0x017F && !isUppercase(c)) || (c >= 0x03AC && c <= 0x03CE) ||
           (c >= 0x0430 && c <= 0x045F);
}

std::u32string codePoints(std::string_view text) {
    std::u32string points;
    points.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        points.push_back(nextCodePoint(text, index));
    }
    return points;
}

std::string lowercased(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        appendUTF8(out, lowercased(nextCodePoint(text, index)));
    }
    return out;
}

} // namespace loadwarden
