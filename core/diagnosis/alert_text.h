#pragma once

#include "core/diagnosis/alert.h"

#include <string>
#include <string_view>

namespace loadwarden {

// Every sentence of an alert is built here, so the banner in the window and
// the system notification say the same thing.
namespace AlertText {

std::string title(const AppAlert& alert);

// In the window the user can act at once; the notification sends them there.
std::string windowBody(const AppAlert& alert);
std::string notificationBody(const AppAlert& alert);

std::string_view symbol(AlertKind kind);

} // namespace AlertText

} // namespace loadwarden
