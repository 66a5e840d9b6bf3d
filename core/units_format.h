#pragma once

#include <cstdint>
#include <string>

namespace loadwarden {

// Byte counts in decimal units as people read them: "512 bytes", "340 KB",
// "1.5 GB". One decimal below 10 of a unit, whole numbers from 10 up.
std::string formatBytes(std::uint64_t bytes);

// "12 MB/s", "1.5 KB/s", "0 bytes/s".
std::string formatBytesPerSecond(double bytesPerSecond);

// A percentage, already scaled to 0..100 (or beyond for several cores): "45%", "0.5%", "230%".
std::string formatPercent(double percent);

} // namespace loadwarden
