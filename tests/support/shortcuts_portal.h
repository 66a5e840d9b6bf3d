#pragma once

// A desktop's global-shortcuts portal, registered by a test on its private
// session bus: it opens sessions, keeps what the program binds, and presses
// a bound shortcut when the test says so.

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThread>

namespace loadwarden::support {

// The portal's side of the bus. It answers on a thread of its own, since
// the program asks it and waits for the answer.
class ShortcutsPortalObject : public QDBusVirtualObject {
public:
    explicit ShortcutsPortalObject(QDBusConnection bus) : bus_(std::move(bus)) {}

    QStringList bound() const;
    QString session() const;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    // Answers the request the way portals do: the call returns the request's
    // path, and its Response signal follows there.
    void answer(const QDBusMessage& call, const QVariantMap& results);

    QDBusConnection bus_;
    mutable QMutex lock_;
    QString session_;
    QStringList bound_;
};

class ShortcutsPortal {
public:
    ShortcutsPortal();
    ~ShortcutsPortal();
    bool isRegistered() const { return registered_; }

    // The ids of the shortcuts bound so far.
    QStringList bound() const { return portal_->bound(); }
    // The desktop saw the user press the shortcut of that id.
    void press(const QString& shortcutID);

private:
    QThread thread_;
    QDBusConnection bus_;
    ShortcutsPortalObject* portal_;
    bool registered_ = false;
};

} // namespace loadwarden::support
