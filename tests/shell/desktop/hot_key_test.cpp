// The hot key through a global-shortcuts portal of the test's own.
#include "shell/desktop/hot_key.h"
#include "tests/shell/desktop/desktop_support.h"
#include "tests/support/event_loop.h"
#include "tests/support/shortcuts_portal.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(HotKeyTest, ThePortalBindsTheKeyOnceAndItsPressBringsTheWindow) {
    support::ensureWidgetApplication();
    support::ShortcutsPortal portal;
    ASSERT_TRUE(portal.isRegistered());
    ASSERT_TRUE(HotKey::isAvailable());

    HotKey hotKey;
    QSignalSpy pressed(&hotKey, &HotKey::pressed);
    hotKey.setEnabled(true);
    hotKey.setEnabled(true); // the setting saved again changes nothing
    ASSERT_TRUE(support::processEventsUntil([&] { return !portal.bound().isEmpty(); }));
    EXPECT_EQ(portal.bound(), QStringList{"bring-forward"});

    portal.press("bring-forward");
    ASSERT_TRUE(support::processEventsUntil([&] { return pressed.count() == 1; }));
    portal.press("something-else");
    hotKey.setEnabled(false);
    portal.press("bring-forward");
    support::processEventsUntil([] { return false; }, 300);
    EXPECT_EQ(pressed.count(), 1);
}

} // namespace
} // namespace loadwarden
