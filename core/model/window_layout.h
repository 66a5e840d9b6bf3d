#pragma once

#include "core/model/window_state.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace loadwarden {

// What the window remembers of itself from one run to the next: where it
// was and how big, the tab, and each table's columns (widths, order, which
// are shown, the sorted one). Kept beside the settings, under "window".
struct WindowLayout {
    // The window system's own records, as text: the window's frame, and each
    // table's header by the table's name.
    std::string geometry;
    Tab tab = Tab::processes;
    std::map<std::string, std::string> tables;

    bool operator==(const WindowLayout&) const = default;
};

std::string encodeWindowLayout(const WindowLayout& layout);
// Absent for anything but a whole layout: an unknown tab, a missing or
// mistyped field, text that is not JSON.
std::optional<WindowLayout> decodeWindowLayout(std::string_view stored);

} // namespace loadwarden
