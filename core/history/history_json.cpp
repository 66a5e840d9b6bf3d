#include "core/history/history_json.h"

namespace loadwarden {

void to_json(nlohmann::json& j, const UsageTotals& totals) {
    j = {{"cpuSeconds", totals.cpuSeconds},
         {"peakMemory", totals.peakMemory},
         {"energyJoules", totals.energyJoules},
         {"networkBytes", totals.networkBytes},
         {"seenSeconds", totals.seenSeconds}};
}

void from_json(const nlohmann::json& j, UsageTotals& totals) {
    totals = {.cpuSeconds = j.at("cpuSeconds").get<double>(),
              .peakMemory = wholeNumber<std::uint64_t>(j.at("peakMemory")),
              .energyJoules = j.at("energyJoules").get<double>(),
              .networkBytes = j.at("networkBytes").get<double>(),
              .seenSeconds = j.at("seenSeconds").get<double>()};
}

void to_json(nlohmann::json& j, const UsageHistory& history) {
    j = {{"version", history.version}, {"days", history.days}};
}

void from_json(const nlohmann::json& j, UsageHistory& history) {
    history.version = wholeNumber<int>(j.at("version"));
    j.at("days").get_to(history.days);
}

std::string encodeHistory(const UsageHistory& history) {
    // A name that is not UTF-8 gets replacement characters rather than
    // making the save throw.
    return nlohmann::json(history).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::optional<UsageHistory> decodeHistory(std::string_view text) {
    try {
        auto history = nlohmann::json::parse(text).get<UsageHistory>();
        if (history.version >= 2) {
            return std::nullopt;
        }
        return history;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace loadwarden
