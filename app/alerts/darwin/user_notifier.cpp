#include "app/alerts/darwin/notification_center.h"
#include "app/alerts/notifier.h"
#include "core/diagnosis/alert_text.h"

#include <CoreFoundation/CoreFoundation.h>

namespace loadwarden {

namespace {

// The center raises an exception in a program without a bundle: the command
// line has none and shows no notifications.
bool isBundled() {
    const CFBundleRef bundle = CFBundleGetMainBundle();
    return bundle != nullptr && CFBundleGetIdentifier(bundle) != nullptr;
}

// The user notification center, once the user allows alerts with sound.
class UserNotifier final : public Notifier {
public:
    void post(const AppAlert& alert) override {
        if (isBundled()) {
            NotificationCenter::deliver(alert.id(), AlertText::title(alert),
                                        AlertText::notificationBody(alert));
        }
    }
};

} // namespace

std::unique_ptr<Notifier> makeSystemNotifier() {
    return std::make_unique<UserNotifier>();
}

} // namespace loadwarden
