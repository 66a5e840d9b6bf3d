#include "shell/desktop/window_memory.h"

#include "core/model/window_layout.h"
#include "shell/desktop/main_window.h"

#include <QByteArray>
#include <QHeaderView>

namespace loadwarden {

namespace {

const std::string key = "window";

QByteArray fromText(const std::string& text) {
    return QByteArray::fromBase64(QByteArray::fromStdString(text));
}

std::string toText(const QByteArray& bytes) {
    return bytes.toBase64().toStdString();
}

} // namespace

void WindowMemory::restore(MainWindow& window) const {
    const auto stored = defaults_.read(key);
    const auto layout = stored ? decodeWindowLayout(*stored) : std::nullopt;
    if (!layout) {
        return;
    }
    window.restoreGeometry(fromText(layout->geometry));
    window.showTab(layout->tab);
    for (const auto& [name, header] : window.tableHeaders()) {
        if (const auto table = layout->tables.find(name); table != layout->tables.end()) {
            header->restoreState(fromText(table->second));
        }
    }
}

bool WindowMemory::save(MainWindow& window) const {
    WindowLayout layout{.geometry = toText(window.saveGeometry()), .tab = window.currentTab()};
    for (const auto& [name, header] : window.tableHeaders()) {
        layout.tables.emplace(name, toText(header->saveState()));
    }
    return defaults_.write(key, encodeWindowLayout(layout));
}

} // namespace loadwarden
