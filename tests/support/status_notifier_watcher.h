#pragma once

// A tray host, registered by a test on its private session bus: it says a
// host is there, keeps the items that register, and reads their properties
// back across the bus.

#include <QDBusConnection>
#include <QDBusContext>
#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QVariant>
#include <optional>

namespace loadwarden::support {

// The watcher's side of the bus. It answers on a thread of its own, since
// the program asks it and waits for the answer.
class StatusNotifierHost : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

public:
    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items() const;

public slots:
    void RegisterStatusNotifierItem(const QString& service);
    void RegisterStatusNotifierHost(const QString& service);

private:
    mutable QMutex lock_;
    QStringList items_;
};

class StatusNotifierWatcher {
public:
    StatusNotifierWatcher();
    ~StatusNotifierWatcher();
    bool isRegistered() const { return registered_; }
    QStringList items() const { return host_->items(); }

    // A property of the first item that registered, read over the bus.
    QVariant itemProperty(const QString& name) const;
    // The title line of the first item's tooltip.
    std::optional<QString> itemToolTipTitle() const;

private:
    QThread thread_;
    StatusNotifierHost* host_;
    QDBusConnection bus_;
    bool registered_ = false;
};

} // namespace loadwarden::support
