#pragma once

#include "app/grouping/desktop_entry_catalog.h"

#include <QIcon>
#include <string>
#include <unordered_map>

namespace loadwarden {

// Each app's own icon, looked up once: on macOS the workspace's icon for its
// bundle; on Linux the one its desktop entry names, from the icon theme or
// the file the entry gives.
class AppIcons {
public:
    // `bundlePath`: a bundle's path, or on Linux a desktop-entry id.
    const QIcon& icon(const std::string& bundlePath);

private:
    QIcon lookUp(const std::string& bundlePath);

    std::unordered_map<std::string, QIcon> icons_;
#ifndef __APPLE__
    DesktopEntryCatalog entries_ = DesktopEntryCatalog::forCurrentUser();
#endif
};

} // namespace loadwarden
