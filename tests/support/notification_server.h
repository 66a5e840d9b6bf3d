#pragma once

// A desktop notification server, registered by a test on its private
// session bus, that keeps what it is sent.

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <vector>

namespace loadwarden::support {

class NotificationServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Notification {
        QString appName;
        QString icon;
        QString summary;
        QString body;
        QVariantMap hints;
    };

    // On a connection of its own, so that the program's calls cross the bus.
    NotificationServer();
    ~NotificationServer() override;
    bool isRegistered() const { return registered_; }

    std::vector<Notification> received;

public slots:
    uint Notify(const QString& appName, uint replacesID, const QString& icon,
                const QString& summary, const QString& body, const QStringList& actions,
                const QVariantMap& hints, int timeout);

private:
    QDBusConnection bus_;
    bool registered_ = false;
};

} // namespace loadwarden::support
