#pragma once

#include "core/startup/startup_item.h"

#include <string>

namespace loadwarden {

// Every word the Startup apps tab and `loadwarden startup` say about an item.
namespace StartupText {

std::string kind(const StartupItem& item);
// "Always running", "At login" ("At startup" for a system service
// elsewhere than on the Mac), "Every 1h", "When asked".
std::string runs(const StartupItem& item);
std::string status(const StartupItem& item);
std::string impact(StartupImpact impact);

// Why the user cannot switch an item themselves.
std::string onlyAnAdministrator();
// The switching tool exited with `code`.
std::string toolFailed(std::string_view tool, int code);
std::string toolDidNotStart(std::string_view tool);

} // namespace StartupText

} // namespace loadwarden
