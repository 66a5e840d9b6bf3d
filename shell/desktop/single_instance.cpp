#include "shell/desktop/single_instance.h"

#ifndef __APPLE__
#include <QDBusConnection>
#include <QDBusMessage>
#endif

namespace loadwarden {

#ifndef __APPLE__
namespace {

const QString service = QStringLiteral("io.loadwarden.Loadwarden");
const QString path = QStringLiteral("/io/loadwarden/Loadwarden");

} // namespace
#endif

SingleInstance::SingleInstance(QObject* parent) : QObject(parent) {
#ifndef __APPLE__
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return; // no session bus: nothing to share a name on
    }
    if (bus.registerService(service)) {
        bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
        return;
    }
    first_ = false;
    bus.call(QDBusMessage::createMethodCall(service, path, service, QStringLiteral("Activate")));
#endif
}

void SingleInstance::Activate() {
    emit activated();
}

} // namespace loadwarden
