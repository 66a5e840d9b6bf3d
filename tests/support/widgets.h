#pragma once

// Widgets away from the user's desktop and folders, for tests and benchmarks.

#include <QApplication>
#include <QTemporaryDir>

namespace loadwarden::support {

// Under Qt's offscreen platform unless the caller asks for a real display.
inline void ensureWidgetApplication() {
    static int argc = 1;
    static char name[] = "desktop_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        new QApplication(argc, argv);
    }
}

// Settings and data folders of the caller's own, so the user's are never touched.
class PrivateHome {
public:
    PrivateHome() {
        qputenv("XDG_CONFIG_HOME", filePath("config").toUtf8());
        qputenv("XDG_DATA_HOME", filePath("data").toUtf8());
    }
    bool isValid() const { return folder_.isValid(); }
    QString filePath(const QString& name) const { return folder_.filePath(name); }

private:
    QTemporaryDir folder_;
};

} // namespace loadwarden::support
