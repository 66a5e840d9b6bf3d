#pragma once

// JSON coding of process groups; keys are the field names, the kind is its
// integer.

#include "core/grouping/process_group.h"
#include "core/measurement/measurement_json.h"

namespace loadwarden {

void to_json(nlohmann::json& j, GroupKind kind);
void from_json(const nlohmann::json& j, GroupKind& kind);

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ProcessGroup, id, name, kind, bundlePath, leader,
                                                members, isProtected, isSelf)

} // namespace loadwarden
