#pragma once

#include "core/foundation/raw_value.h"

namespace loadwarden {

// A column of the process table that rows can be sorted by.
enum class ProcessColumn { name, cpu, memory, energy, disk, network, gpu };

template <>
struct RawValues<ProcessColumn> {
    static constexpr RawValueTable<ProcessColumn, 7> table{{
        {ProcessColumn::name, "name"},
        {ProcessColumn::cpu, "cpu"},
        {ProcessColumn::memory, "memory"},
        {ProcessColumn::energy, "energy"},
        {ProcessColumn::disk, "disk"},
        {ProcessColumn::network, "network"},
        {ProcessColumn::gpu, "gpu"},
    }};
};

} // namespace loadwarden
