#pragma once

// Widgets under Qt's offscreen platform, with a picture of each state a test
// visits saved for people to look at.

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QWidget>
#include <string>

namespace loadwarden::support {

inline void ensureWidgetApplication() {
    static int argc = 1;
    static char name[] = "desktop_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) {
        // Offscreen unless a test asks for a real display.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        new QApplication(argc, argv);
    }
}

// Settings and data folders of the test's own, so the user's are never touched.
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

// Saved as artifacts/NAME.png beside the tests.
inline void saveScreenshot(QWidget& widget, const std::string& name) {
    QDir().mkpath(LOADWARDEN_ARTIFACTS);
    widget.grab().save(QString(LOADWARDEN_ARTIFACTS) + "/" + QString::fromStdString(name) + ".png");
}

} // namespace loadwarden::support
