#pragma once

#include <QString>

namespace loadwarden {

// Shows the file selected in the system's file manager (the Finder on macOS);
// where no file manager answers, its folder opens instead.
void revealFile(const QString& path);

// What the button that does it says here.
QString revealFileTitle();

// Opens a page of macOS System Settings, such as "com.apple.settings.Storage".
void openSystemSettings(const char* page);

} // namespace loadwarden
