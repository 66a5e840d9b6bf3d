// The meter as a tray host sees it, across a private session bus.
#include "shell/desktop/menu_bar_meter.h"
#include "tests/shell/desktop/desktop_support.h"
#include "tests/support/event_loop.h"
#include "tests/support/status_notifier_watcher.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(TrayTest, AHostReadsTheMeterTextAsTheTooltip) {
    const support::PrivateHome home;
    // The host must be there before the program looks for a tray.
    support::ensureWidgetApplication();
    support::StatusNotifierWatcher watcher;
    ASSERT_TRUE(watcher.isRegistered());

    AppModel::Parts parts = AppModel::machineParts();
    parts.interval = 1.0;
    AppModel model(std::move(parts));
    MenuBarMeter meter(model);
    ASSERT_TRUE(MenuBarMeter::isAvailable());
    model.start();
    ASSERT_TRUE(support::processEventsUntil([&] {
        return !model.menuBar().text.empty() && !watcher.items().isEmpty() &&
               watcher.itemToolTipTitle() == QString::fromStdString(model.menuBar().text);
    }));
    // Qt's tray names the program as the item's title.
    EXPECT_EQ(watcher.itemProperty("Title").toString(), QCoreApplication::applicationName());
    EXPECT_EQ(watcher.itemProperty("Status").toString(), "Active");
}

} // namespace
} // namespace loadwarden
