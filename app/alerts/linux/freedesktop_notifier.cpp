#include "app/alerts/linux/freedesktop_notifier.h"

#include "core/diagnosis/alert_text.h"
#include "core/foundation/program.h"

#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

namespace loadwarden {

namespace {

constexpr int serverDecidesTimeout = -1;
constexpr unsigned char normalUrgency = 1;

} // namespace

FreedesktopNotifier::FreedesktopNotifier(QDBusConnection bus) : bus_(std::move(bus)) {}

void FreedesktopNotifier::post(const AppAlert& alert) {
    QDBusMessage notify = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const QVariantMap hints{
        {QStringLiteral("desktop-entry"),
         QString::fromUtf8(applicationID.data(), static_cast<qsizetype>(applicationID.size()))},
        {QStringLiteral("sound-name"), QStringLiteral("message-new-instant")},
        {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)},
    };
    notify << QStringLiteral("Loadwarden") << 0u << QStringLiteral("utilities-system-monitor")
           << QString::fromStdString(AlertText::title(alert))
           << QString::fromStdString(AlertText::notificationBody(alert)) << QStringList() << hints
           << serverDecidesTimeout;
    bus_.send(notify); // the reply, an id or an error, tells nothing worth waiting for
}

std::unique_ptr<Notifier> makeSystemNotifier() {
    return std::make_unique<FreedesktopNotifier>();
}

} // namespace loadwarden
