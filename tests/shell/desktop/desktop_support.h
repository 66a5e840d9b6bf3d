#pragma once

// Widgets under Qt's offscreen platform, with a picture of each state a test
// visits saved for people to look at.

#include <QApplication>
#include <QDir>
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

// Saved as artifacts/NAME.png beside the tests.
inline void saveScreenshot(QWidget& widget, const std::string& name) {
    QDir().mkpath(LOADWARDEN_ARTIFACTS);
    widget.grab().save(QString(LOADWARDEN_ARTIFACTS) + "/" + QString::fromStdString(name) + ".png");
}

} // namespace loadwarden::support
