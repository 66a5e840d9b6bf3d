#pragma once

#include "app/control/defaults_store.h"
#include "app/foundation/loaded.h"
#include "core/model/app_settings.h"

namespace loadwarden {

// The user's preferences in the defaults that the paused ledger shares,
// under "settings".
class SettingsStore {
public:
    explicit SettingsStore(DefaultsStore defaults = {}) : defaults_(std::move(defaults)) {}

    // The defaults when nothing is stored or what is stored does not decode;
    // such a value is kept aside first, and the note says where.
    Loaded<AppSettings> load() const;
    // False when the value could not be written.
    bool save(const AppSettings& settings) const;

private:
    DefaultsStore defaults_;
};

} // namespace loadwarden
