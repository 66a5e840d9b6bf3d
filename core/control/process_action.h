#pragma once

#include "core/foundation/raw_value.h"

namespace loadwarden {

enum class ProcessAction { quit, forceQuit, pause, resume, limit };

template <>
struct RawValues<ProcessAction> {
    static constexpr RawValueTable<ProcessAction, 5> table{{
        {ProcessAction::quit, "quit"},
        {ProcessAction::forceQuit, "forceQuit"},
        {ProcessAction::pause, "pause"},
        {ProcessAction::resume, "resume"},
        {ProcessAction::limit, "limit"},
    }};
};

} // namespace loadwarden
