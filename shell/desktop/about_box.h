#pragma once

class QWidget;

namespace loadwarden {

// The program's name, version and what it is, from the Help menu (the
// application menu on macOS).
void showAboutBox(QWidget* parent);

} // namespace loadwarden
