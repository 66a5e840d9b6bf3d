#include "core/text/duration_format.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace loadwarden {

namespace {

struct Unit {
    std::int64_t seconds;
    const char* suffix;
};

constexpr std::array<Unit, 3> longUnits{{{86400, "d"}, {3600, "h"}, {60, "m"}}};
constexpr std::array<Unit, 2> shortUnits{{{60, "m"}, {1, "s"}}};

template <std::size_t N>
std::string format(std::int64_t remaining, const std::array<Unit, N>& units) {
    std::string text;
    int shown = 0;
    bool started = false;
    for (const Unit& unit : units) {
        const std::int64_t amount = remaining / unit.seconds;
        remaining %= unit.seconds;
        started = started || amount > 0;
        if (!started) {
            continue;
        }
        if (++shown > 2) {
            break;
        }
        if (amount > 0) {
            text += (text.empty() ? "" : " ") + std::to_string(amount) + unit.suffix;
        }
    }
    return text.empty() ? "0" + std::string(units.back().suffix) : text;
}

} // namespace

std::string abbreviatedDuration(Seconds seconds) {
    const auto whole =
        static_cast<std::int64_t>(std::isfinite(seconds) && seconds > 0 ? seconds : 0);
    return whole >= 3600 ? format(whole, longUnits) : format(whole, shortUnits);
}

} // namespace loadwarden
