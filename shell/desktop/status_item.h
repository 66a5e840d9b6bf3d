#pragma once

#include "core/model/menu_bar_state.h"

#include <memory>
#include <string>

class QMenu;

namespace loadwarden {

// macOS only: the meter in the menu bar as a status item whose title is the
// meter's text, drawn warm while an app runs hot, with the meter's menu.
class StatusItem {
public:
    explicit StatusItem(QMenu& menu);
    ~StatusItem();
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    void show(const MenuBarState& state, const std::string& toolTip);
    void setVisible(bool visible);

private:
    struct Native;
    std::unique_ptr<Native> native_;
};

} // namespace loadwarden
