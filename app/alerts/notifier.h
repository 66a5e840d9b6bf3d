#pragma once

#include "core/diagnosis/alert.h"

#include <memory>

namespace loadwarden {

// Posts alerts as the system's notifications. Never blocks the caller and
// never fails loudly: with no notification service an alert is seen only in
// the window.
class Notifier {
public:
    virtual ~Notifier() = default;
    virtual void post(const AppAlert& alert) = 0;
};

// The notification service of the system this program was built for.
std::unique_ptr<Notifier> makeSystemNotifier();

} // namespace loadwarden
