#include "core/diagnosis/diagnosis_json.h"

namespace loadwarden {

void to_json(nlohmann::json& j, const Cause::Fix& fix) {
    j = {{"kind", fix.kind}, {"key", fix.key.empty() ? nlohmann::json() : nlohmann::json(fix.key)}};
}

void from_json(const nlohmann::json& j, Cause::Fix& fix) {
    j.at("kind").get_to(fix.kind);
    const auto& key = j.at("key");
    fix.key = key.is_null() ? std::string() : key.get<std::string>();
}

} // namespace loadwarden
