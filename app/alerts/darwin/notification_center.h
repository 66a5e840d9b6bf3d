#pragma once

#include <string>

namespace loadwarden::NotificationCenter {

// Delivers a notification with sound through the user notification center,
// asking the user the first time. Only a bundled program may call it.
void deliver(const std::string& identifier, const std::string& title, const std::string& body);

} // namespace loadwarden::NotificationCenter
