#include "shell/desktop/app_icons.h"

#include <QFileIconProvider>
#include <QFileInfo>

namespace loadwarden {

const QIcon& AppIcons::icon(const std::string& bundlePath) {
    const auto known = icons_.find(bundlePath);
    if (known != icons_.end()) {
        return known->second;
    }
    return icons_.emplace(bundlePath, lookUp(bundlePath)).first->second;
}

#ifdef __APPLE__

// Qt asks the workspace for a bundle's icon.
QIcon AppIcons::lookUp(const std::string& bundlePath) {
    return QFileIconProvider().icon(QFileInfo(QString::fromStdString(bundlePath)));
}

#else

QIcon AppIcons::lookUp(const std::string& bundlePath) {
    const auto& entry = entries_.find(bundlePath);
    const QString name = QString::fromStdString(entry ? entry->icon : bundlePath);
    if (name.startsWith(QLatin1Char('/'))) {
        return QIcon(name);
    }
    return QIcon::fromTheme(name);
}

#endif

} // namespace loadwarden
