#include "core/grouping/process_group_json.h"

namespace loadwarden {

void to_json(nlohmann::json& j, GroupKind kind) {
    j = static_cast<int>(kind);
}

void from_json(const nlohmann::json& j, GroupKind& kind) {
    const auto parsed = groupKindFromRawValue(j.get<int>());
    if (!parsed) {
        throw nlohmann::json::other_error::create(501, "unknown group kind " + j.dump(), &j);
    }
    kind = *parsed;
}

} // namespace loadwarden
