#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace loadwarden {

// Section of the process table; ordered and coded by its integer.
enum class GroupKind : int { app = 0, background = 1, system = 2 };

constexpr std::array<GroupKind, 3> allGroupKinds{GroupKind::app, GroupKind::background,
                                                 GroupKind::system};

constexpr std::optional<GroupKind> groupKindFromRawValue(int raw) {
    if (raw < 0 || raw >= static_cast<int>(allGroupKinds.size())) {
        return std::nullopt;
    }
    return static_cast<GroupKind>(raw);
}

} // namespace loadwarden
