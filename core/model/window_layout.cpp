#include "core/model/window_layout.h"

#include <nlohmann/json.hpp>

namespace loadwarden {

std::string encodeWindowLayout(const WindowLayout& layout) {
    return nlohmann::json{{"geometry", layout.geometry},
                          {"tab", rawValue(layout.tab)},
                          {"tables", layout.tables}}
        .dump();
}

std::optional<WindowLayout> decodeWindowLayout(std::string_view stored) {
    try {
        const nlohmann::json json = nlohmann::json::parse(stored);
        const auto tab = fromRawValue<Tab>(json.at("tab").get<std::string>());
        if (!tab) {
            return std::nullopt;
        }
        return WindowLayout{.geometry = json.at("geometry").get<std::string>(),
                            .tab = *tab,
                            .tables = json.at("tables").get<std::map<std::string, std::string>>()};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

} // namespace loadwarden
