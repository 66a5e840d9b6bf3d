#pragma once

#include "core/grouping/process_column.h"
#include "core/grouping/process_group.h"

#include <array>
#include <string>

namespace loadwarden {

// One cell of the process table's figures: its text, a dash where the
// system gives no figure, and how heavily it is shaded (0 to 4).
struct Figure {
    std::string text;
    int heat = 0;

    bool operator==(const Figure&) const = default;
};

// CPU, memory, energy, disk, network and graphics, in the table's order.
inline constexpr std::size_t figureCount = 6;
using RowFigures = std::array<Figure, figureCount>;

// The figure of one of the table's columns; every column after the name has one.
inline const Figure& figureOf(const RowFigures& figures, ProcessColumn column) {
    return figures[static_cast<std::size_t>(column) - 1];
}

RowFigures groupFigures(const ProcessGroup& group);
RowFigures memberFigures(const LiveProcess& member);

} // namespace loadwarden
