#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace loadwarden {

// What every face shows where the system gives no figure.
inline constexpr std::string_view noFigure = "-";

// Byte counts in decimal units as people read them: "512 bytes", "340 KB",
// "1.5 GB". One decimal below 10 of a unit, whole numbers from 10 up.
std::string formatBytes(std::uint64_t bytes);

// The same for a byte figure that is computed rather than counted (a mean, a
// fitted line); negative or not finite reads as "0 bytes".
std::string formatByteAmount(double bytes);

// "12 MB/s", "1.5 KB/s", "0 bytes/s".
std::string formatBytesPerSecond(double bytesPerSecond);

// A percentage, already scaled to 0..100 (or beyond for several cores): "45%", "0.5%", "230%".
std::string formatPercent(double percent);

// A count of whole units, truncated: "1 minute", "14 days".
std::string formatCount(double amount, std::string_view unit);

// Power draw: "4.5 W", "12 W".
std::string formatWatts(double watts);

// Energy used, from joules, in the unit of a battery's capacity: "0.3 Wh", "12 Wh".
std::string formatWattHours(double joules);

} // namespace loadwarden
