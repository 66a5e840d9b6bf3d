#include "shell/desktop/reveal_file.h"

#include <QDesktopServices>
#include <QUrl>

#ifdef __APPLE__
#include <QProcess>
#else
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFileInfo>
#endif

namespace loadwarden {

// Only macOS offers the pages, so only there is this reached.
void openSystemSettings(const char* page) {
    QDesktopServices::openUrl(QUrl(QStringLiteral("x-apple.systempreferences:") + page));
}

#ifdef __APPLE__

void revealFile(const QString& path) {
    QProcess::startDetached(QStringLiteral("/usr/bin/open"), {QStringLiteral("-R"), path});
}

QString revealFileTitle() {
    return QStringLiteral("Show in Finder");
}

#else

// The freedesktop file-manager interface selects the file; not every
// desktop has one. Asked without waiting, so the window never stalls.
void revealFile(const QString& path) {
    QDBusMessage show = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    show << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(show),
                                               QCoreApplication::instance());
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, [path](auto* finished) {
        if (finished->isError()) {
            QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
        }
        finished->deleteLater();
    });
}

QString revealFileTitle() {
    return QStringLiteral("Show in File Manager");
}

#endif

} // namespace loadwarden
