#include "tests/support/status_notifier_watcher.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace loadwarden::support {

namespace {

const QString connectionName = QStringLiteral("status-notifier-watcher");
const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher()
    : host_(new StatusNotifierHost),
      bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName)) {
    // Registered before it moves, so that what the bus hangs on it moves too.
    registered_ =
        bus_.registerObject(QStringLiteral("/StatusNotifierWatcher"), host_,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
    thread_.start();
    host_->moveToThread(&thread_);
    registered_ = registered_ && bus_.registerService(service);
}

StatusNotifierWatcher::~StatusNotifierWatcher() {
    bus_.unregisterService(service);
    bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    QDBusConnection::disconnectFromBus(connectionName);
    thread_.quit();
    thread_.wait();
    delete host_; // its thread is over
}

QStringList StatusNotifierHost::items() const {
    const QMutexLocker locked(&lock_);
    return items_;
}

void StatusNotifierHost::RegisterStatusNotifierItem(const QString& item) {
    // An item may give its bus name or only its path; the sender is the name then.
    const QMutexLocker locked(&lock_);
    items_ << (item.startsWith('/') ? message().service() : item);
}

void StatusNotifierHost::RegisterStatusNotifierHost(const QString&) {}

// The item answers on the test's own thread, which keeps serving while it waits.
QVariant StatusNotifierWatcher::itemProperty(const QString& name) const {
    const QStringList registered = items();
    if (registered.isEmpty()) {
        return {};
    }
    QDBusMessage get = QDBusMessage::createMethodCall(
        registered.front(), QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierItem") << name;
    const QDBusMessage answer = bus_.call(get, QDBus::BlockWithGui);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        return {};
    }
    return answer.arguments().front().value<QDBusVariant>().variant();
}

// The tooltip is (icon name, images, title, text).
std::optional<QString> StatusNotifierWatcher::itemToolTipTitle() const {
    const QVariant toolTip = itemProperty(QStringLiteral("ToolTip"));
    if (!toolTip.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    const QDBusArgument fields = toolTip.value<QDBusArgument>();
    QString icon;
    QString title;
    QString text;
    fields.beginStructure();
    fields >> icon;
    fields.beginArray();
    while (!fields.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray pixels;
        fields.beginStructure();
        fields >> width >> height >> pixels;
        fields.endStructure();
    }
    fields.endArray();
    fields >> title >> text;
    fields.endStructure();
    return title;
}

} // namespace loadwarden::support
