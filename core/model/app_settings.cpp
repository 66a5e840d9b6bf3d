#include "core/model/app_settings.h"

#include "core/diagnosis/diagnosis_json.h"

#include <nlohmann/json.hpp>

namespace loadwarden {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AppSettings, onboardingDone, interval, showMenuBar, hotKey,
                                   alerts)

std::string encodeSettings(const AppSettings& settings) {
    return nlohmann::json(settings).dump();
}

std::optional<AppSettings> decodeSettings(std::string_view stored) {
    try {
        return nlohmann::json::parse(stored).get<AppSettings>();
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace loadwarden
