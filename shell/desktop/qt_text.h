#pragma once

#include <QString>
#include <string_view>

namespace loadwarden {

// The program's own texts, all UTF-8, as Qt shows them.
inline QString qtText(std::string_view words) {
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

} // namespace loadwarden
