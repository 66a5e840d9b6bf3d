#include "tests/support/notification_server.h"

namespace loadwarden::support {

namespace {

const QString connectionName = QStringLiteral("notification-server");
const QString service = QStringLiteral("org.freedesktop.Notifications");

} // namespace

NotificationServer::NotificationServer()
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName)) {
    registered_ = bus_.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                      QDBusConnection::ExportAllSlots) &&
                  bus_.registerService(service);
}

NotificationServer::~NotificationServer() {
    bus_.unregisterService(service);
    QDBusConnection::disconnectFromBus(connectionName);
}

uint NotificationServer::Notify(const QString& appName, uint, const QString& icon,
                                const QString& summary, const QString& body, const QStringList&,
                                const QVariantMap& hints, int) {
    received.push_back({appName, icon, summary, body, hints});
    return static_cast<uint>(received.size());
}

} // namespace loadwarden::support
