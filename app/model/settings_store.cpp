#include "app/model/settings_store.h"

namespace loadwarden {

namespace {

constexpr char settingsKey[] = "settings";

} // namespace

Loaded<AppSettings> SettingsStore::load() const {
    const auto stored = defaults_.read(settingsKey);
    if (!stored) {
        return {};
    }
    if (const auto settings = decodeSettings(*stored)) {
        return {.value = *settings};
    }
    std::string note = "Settings couldn’t be read, so they are back to their defaults";
    if (const auto kept = defaults_.keepAside(settingsKey)) {
        note += "; the unreadable value is kept as " + *kept + " in " + defaults_.path();
    }
    return {.value = {}, .note = note + "."};
}

bool SettingsStore::save(const AppSettings& settings) const {
    return defaults_.write(settingsKey, encodeSettings(settings));
}

} // namespace loadwarden
