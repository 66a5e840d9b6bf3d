#include "shell/desktop/hot_key.h"

namespace loadwarden {

HotKey::HotKey(QObject* parent) : QObject(parent) {}

HotKey::~HotKey() = default;

bool HotKey::isAvailable() {
    return hotKeyAvailable();
}

void HotKey::setEnabled(bool enabled) {
    if (!enabled) {
        registration_.reset();
    } else if (!registration_) {
        registration_ = registerHotKey([this] { emit pressed(); });
    }
}

} // namespace loadwarden
