#pragma once

#include "app/alerts/notifier.h"

#include <QDBusConnection>

namespace loadwarden {

// The desktop's notification server (org.freedesktop.Notifications) on the
// session bus. Each alert is sent without waiting for the answer; a bus or
// server that is not there costs nothing.
class FreedesktopNotifier final : public Notifier {
public:
    explicit FreedesktopNotifier(QDBusConnection bus = QDBusConnection::sessionBus());

    void post(const AppAlert& alert) override;

private:
    QDBusConnection bus_;
};

} // namespace loadwarden
