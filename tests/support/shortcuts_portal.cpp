#include "tests/support/shortcuts_portal.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>

namespace loadwarden::support {

namespace {

const QString connectionName = QStringLiteral("shortcuts-portal");
const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

// The handle_token in a call's last argument, its options.
QString tokenOf(const QDBusMessage& call) {
    const auto options = qdbus_cast<QVariantMap>(call.arguments().last());
    return options.value(QStringLiteral("handle_token")).toString();
}

// The ids in an a(sa{sv}) of shortcuts.
QStringList idsOf(const QVariant& shortcuts) {
    QStringList ids;
    const auto array = shortcuts.value<QDBusArgument>();
    array.beginArray();
    while (!array.atEnd()) {
        QString id;
        QVariantMap properties;
        array.beginStructure();
        array >> id >> properties;
        array.endStructure();
        ids << id;
    }
    array.endArray();
    return ids;
}

} // namespace

ShortcutsPortal::ShortcutsPortal()
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName)),
      portal_(new ShortcutsPortalObject(bus_)) {
    registered_ = bus_.registerVirtualObject(path, portal_);
    thread_.start();
    portal_->moveToThread(&thread_);
    registered_ = registered_ && bus_.registerService(service);
}

ShortcutsPortal::~ShortcutsPortal() {
    bus_.unregisterService(service);
    bus_.unregisterObject(path);
    QDBusConnection::disconnectFromBus(connectionName);
    thread_.quit();
    thread_.wait();
    delete portal_; // its thread is over
}

void ShortcutsPortal::press(const QString& shortcutID) {
    QDBusMessage activated =
        QDBusMessage::createSignal(path, interface, QStringLiteral("Activated"));
    activated << QVariant::fromValue(QDBusObjectPath(portal_->session())) << shortcutID
              << qulonglong(0) << QVariantMap();
    bus_.send(activated);
}

QStringList ShortcutsPortalObject::bound() const {
    const QMutexLocker locked(&lock_);
    return bound_;
}

QString ShortcutsPortalObject::session() const {
    const QMutexLocker locked(&lock_);
    return session_;
}

QString ShortcutsPortalObject::introspect(const QString&) const {
    return {};
}

bool ShortcutsPortalObject::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString member = message.member();
    if (member == QStringLiteral("Get")) {
        bus_.send(message.createReply(QVariant::fromValue(QDBusVariant(1u))));
    } else if (member == QStringLiteral("CreateSession")) {
        const QMutexLocker locked(&lock_);
        session_ = path + QStringLiteral("/session/test");
        answer(message, {{QStringLiteral("session_handle"), session_}});
    } else if (member == QStringLiteral("BindShortcuts")) {
        {
            const QMutexLocker locked(&lock_);
            bound_ << idsOf(message.arguments().at(1));
        }
        answer(message, {});
    } else {
        return false;
    }
    return true;
}

void ShortcutsPortalObject::answer(const QDBusMessage& call, const QVariantMap& results) {
    QString sender = call.service().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    const QString request =
        path + QStringLiteral("/request/") + sender + QLatin1Char('/') + tokenOf(call);
    bus_.send(call.createReply(QVariant::fromValue(QDBusObjectPath(request))));
    QDBusMessage response = QDBusMessage::createSignal(
        request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
    response << 0u << results;
    bus_.send(response);
}

} // namespace loadwarden::support
