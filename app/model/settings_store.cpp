#include "app/model/settings_store.h"

namespace loadwarden {

namespace {

constexpr char settingsKey[] = "settings";

} // namespace

AppSettings SettingsStore::load() const {
    return decodeSettings(defaults_.read(settingsKey));
}

bool SettingsStore::save(const AppSettings& settings) const {
    return defaults_.write(settingsKey, encodeSettings(settings));
}

} // namespace loadwarden
