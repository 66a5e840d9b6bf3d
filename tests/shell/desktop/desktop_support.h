#pragma once

// Widgets under Qt's offscreen platform, with a picture of each state a test
// visits saved for people to look at.

#include "tests/support/widgets.h"

#include <QDir>
#include <QPalette>
#include <QWidget>
#include <string>

namespace loadwarden::support {

// Saved as artifacts/NAME.png beside the tests.
inline void saveScreenshot(QWidget& widget, const std::string& name) {
    QDir().mkpath(LOADWARDEN_ARTIFACTS);
    widget.grab().save(QString(LOADWARDEN_ARTIFACTS) + "/" + QString::fromStdString(name) + ".png");
}

// A dark palette of the kind desktops give, for pictures and checks in the dark.
inline QPalette darkPalette() {
    QPalette dark;
    const QColor window(0x2b, 0x2b, 0x2e);
    const QColor base(0x1e, 0x1e, 0x20);
    const QColor text(0xe6, 0xe6, 0xe6);
    for (const auto& [role, colour] :
         {std::pair(QPalette::Window, window), std::pair(QPalette::WindowText, text),
          std::pair(QPalette::Base, base), std::pair(QPalette::AlternateBase, QColor(0x26, 0x26, 0x29)),
          std::pair(QPalette::Text, text), std::pair(QPalette::Button, QColor(0x35, 0x35, 0x39)),
          std::pair(QPalette::ButtonText, text), std::pair(QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x3e)),
          std::pair(QPalette::ToolTipText, text),
          std::pair(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0xa0)),
          std::pair(QPalette::Highlight, QColor(0x4a, 0x9e, 0xff)),
          std::pair(QPalette::HighlightedText, QColor(Qt::white)),
          std::pair(QPalette::Light, QColor(0x4a, 0x4a, 0x4f)), std::pair(QPalette::Mid, QColor(0x3c, 0x3c, 0x40)),
          std::pair(QPalette::Dark, QColor(0x18, 0x18, 0x1a))}) {
        dark.setColor(role, colour);
    }
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x85));
    dark.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x85));
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x85));
    return dark;
}

} // namespace loadwarden::support
