#include "core/diagnosis/alert.h"

#include <cstdio>

namespace loadwarden {

std::string AppAlert::id() const {
    char dateText[48];
    std::snprintf(dateText, sizeof dateText, "%.6f", date);
    return std::string(rawValue(kind)) + key + dateText;
}

} // namespace loadwarden
