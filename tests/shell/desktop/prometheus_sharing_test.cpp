// The window's offer of its figures to Prometheus, from the settings.
#include "shell/desktop/prometheus_sharing.h"
#include "shell/desktop/settings_window.h"
#include "tests/shell/desktop/window_fixture.h"
#include "tests/support/http_answer.h"

#include <QCheckBox>
#include <QSpinBox>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using PrometheusSharingTest = support::WindowTest;

quint16 freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// One answer of GET /metrics at `port`.
QByteArray scrapeOnce(quint16 port) {
    QTcpSocket socket;
    QByteArray answer;
    QObject::connect(&socket, &QTcpSocket::readyRead, [&] { answer += socket.readAll(); });
    socket.connectToHost(QHostAddress::LocalHost, port);
    socket.write("GET /metrics HTTP/1.1\r\nHost: here\r\n\r\n");
    support::processEventsUntil(
        [&] {
            return support::isWholeAnswer(answer) ||
                   socket.state() == QAbstractSocket::UnconnectedState;
        },
        3000);
    return answer;
}

// The first answer with figures: the model measures over a whole tick first.
QByteArray scrape(quint16 port) {
    QByteArray answer;
    support::processEventsUntil([&] {
        answer = scrapeOnce(port);
        return answer.contains("loadwarden_processes ") || !answer.startsWith("HTTP/1.1 200");
    });
    return answer;
}

TEST_F(PrometheusSharingTest, TheSettingServesTheWindowsOwnModelAndIsRemembered) {
    PrometheusSharing sharing(*model);
    SettingsWindow settings(*model, sharing);
    settings.show();
    QCheckBox* share = nullptr;
    for (QCheckBox* box : settings.findChildren<QCheckBox*>()) {
        share = box->text() == "Share figures with Prometheus on port" ? box : share;
    }
    ASSERT_NE(share, nullptr);
    EXPECT_FALSE(share->isChecked()); // off until the user turns it on
    QSpinBox* port = nullptr;
    for (QSpinBox* box : settings.findChildren<QSpinBox*>()) {
        port = box->accessibleName() == "Port for Prometheus" ? box : port;
    }
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(port->value(), ListenAddress::defaultPort);

    const quint16 chosen = freePort();
    port->setValue(chosen);
    share->click();
    ASSERT_TRUE(sharing.isOn());
    support::saveScreenshot(settings, "settings-sharing");
    const QByteArray answer = scrape(chosen);
    EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 OK")) << answer.left(200).toStdString();
    EXPECT_TRUE(answer.contains("app=\"pid:" + QByteArray::number(spinner) + "\""));

    // Remembered, and a second copy cannot have the port and says so.
    PrometheusSharing again(*model);
    EXPECT_TRUE(again.isOn());
    EXPECT_EQ(again.port(), chosen);
    EXPECT_TRUE(model->problem().contains(QStringLiteral("port %1").arg(chosen)))
        << model->problem().toStdString();

    share->click();
    EXPECT_FALSE(sharing.isOn());
    EXPECT_FALSE(scrape(chosen).startsWith("HTTP/1.1 200"));
}

} // namespace
} // namespace loadwarden
