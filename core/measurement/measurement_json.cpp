#include "core/measurement/measurement_json.h"

namespace loadwarden {

void to_json(nlohmann::json& j, MemoryPressure pressure) {
    j = static_cast<int>(pressure);
}

void from_json(const nlohmann::json& j, MemoryPressure& pressure) {
    const auto parsed = memoryPressureFromRawValue(j.get<int>());
    if (!parsed) {
        throw nlohmann::json::other_error::create(501, "unknown memory pressure " + j.dump(), &j);
    }
    pressure = *parsed;
}

void to_json(nlohmann::json& j, const Series& series) {
    j = {{"values", series.values()}, {"capacity", series.capacity()}};
}

void from_json(const nlohmann::json& j, Series& series) {
    series = Series(j.at("capacity").get<std::size_t>(), j.at("values").get<std::vector<double>>());
}

} // namespace loadwarden
