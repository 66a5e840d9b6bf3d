#pragma once

// Widgets under Qt's offscreen platform, with a picture of each state a test
// visits saved for people to look at.

#include "tests/support/widgets.h"

#include <QDir>
#include <QWidget>
#include <string>

namespace loadwarden::support {

// Saved as artifacts/NAME.png beside the tests.
inline void saveScreenshot(QWidget& widget, const std::string& name) {
    QDir().mkpath(LOADWARDEN_ARTIFACTS);
    widget.grab().save(QString(LOADWARDEN_ARTIFACTS) + "/" + QString::fromStdString(name) + ".png");
}

} // namespace loadwarden::support
