// Notifications through a real session bus: the test's own, with a server
// the test registers.
#include "app/alerts/linux/freedesktop_notifier.h"
#include "core/diagnosis/alert_text.h"
#include "core/foundation/program.h"
#include "tests/support/event_loop.h"
#include "tests/support/notification_server.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

class FreedesktopNotifierTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureApplication(); }
};

TEST_F(FreedesktopNotifierTest, EveryKindReachesTheServerWithItsTexts) {
    support::NotificationServer server;
    ASSERT_TRUE(server.isRegistered());
    const std::vector<AppAlert> alerts{
        {AlertKind::runningHot, "app:/Encoder.app", "Encoder", 12, 91.5, 1.8e9},
        {AlertKind::memoryLeak, "pid:4100", "indexer", 6e8, 1.4e9, 1.8e9},
        {AlertKind::notResponding, "app:/Mail.app", "Mail", 31, 0, 1.8e9},
    };
    FreedesktopNotifier notifier;
    for (const AppAlert& alert : alerts) {
        notifier.post(alert);
    }
    // Posting returned without running the event loop that serves the server.
    EXPECT_TRUE(server.received.empty());
    ASSERT_TRUE(support::processEventsUntil([&] { return server.received.size() == 3; }));
    for (std::size_t i = 0; i < alerts.size(); ++i) {
        const auto& received = server.received[i];
        EXPECT_EQ(received.appName, "Loadwarden");
        EXPECT_EQ(received.summary.toStdString(), AlertText::title(alerts[i]));
        EXPECT_EQ(received.body.toStdString(), AlertText::notificationBody(alerts[i]));
        EXPECT_EQ(received.hints.value("desktop-entry").toString().toStdString(), applicationID);
        EXPECT_TRUE(received.hints.contains("sound-name"));
    }
    EXPECT_EQ(server.received[0].summary, "Encoder is running hot");
}

TEST_F(FreedesktopNotifierTest, AnAlertWithNoServerIsDroppedAndLaterOnesArrive) {
    FreedesktopNotifier notifier;
    notifier.post({AlertKind::runningHot, "pid:7", "first", 10, 90, 1.8e9});
    FreedesktopNotifier unconnected(QDBusConnection(QStringLiteral("no such connection")));
    unconnected.post({AlertKind::runningHot, "pid:7", "unconnected", 10, 90, 1.8e9});
    QCoreApplication::processEvents();

    support::NotificationServer server;
    notifier.post({AlertKind::runningHot, "pid:8", "second", 10, 90, 1.8e9});
    ASSERT_TRUE(support::processEventsUntil([&] { return !server.received.empty(); }));
    QCoreApplication::processEvents();
    ASSERT_EQ(server.received.size(), 1u);
    EXPECT_EQ(server.received[0].summary, "second is running hot");
}

} // namespace
} // namespace loadwarden
