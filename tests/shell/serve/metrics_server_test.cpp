#include "shell/serve/metrics_server.h"
#include "tests/support/event_loop.h"
#include "tests/support/http_answer.h"

#include <QTcpSocket>
#include <gtest/gtest.h>
#include <list>

namespace loadwarden {
namespace {

using namespace std::chrono_literals;
using support::processEventsUntil;

// One client of the server, read as its answers come.
class Client {
public:
    explicit Client(quint16 port) {
        QObject::connect(&socket_, &QTcpSocket::readyRead, [this] { received_ += socket_.readAll(); });
        socket_.connectToHost(QHostAddress::LocalHost, port);
    }

    void send(const QByteArray& bytes) {
        lastWasHead_ = bytes.startsWith("HEAD ");
        socket_.write(bytes);
    }

    // The first whole answer (head and as much body as it announces), or
    // what came before the server closed or the wait ended.
    QByteArray answer() {
        processEventsUntil(
            [this] { return support::isWholeAnswer(received_, lastWasHead_) || closed(); }, 5000);
        return received_;
    }
    bool connected() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    bool closed() const { return socket_.state() == QAbstractSocket::UnconnectedState; }
    bool closesSoon() {
        return processEventsUntil([this] { return closed(); }, 5000);
    }
    void forget() { received_.clear(); }

private:
    QTcpSocket socket_;
    QByteArray received_;
    bool lastWasHead_ = false;
};

QByteArray body(const QByteArray& answer) {
    return answer.mid(answer.indexOf("\r\n\r\n") + 4);
}

class MetricsServerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { support::ensureApplication(); }

    void SetUp() override {
        ASSERT_EQ(server.start({"127.0.0.1", 0}), std::nullopt);
        port = server.port();
    }

    QByteArray ask(const QByteArray& request) {
        Client client(port);
        client.send(request);
        return client.answer();
    }

    int renders = 0;
    MetricsServer server{[this](ExpositionFormat format) {
                             ++renders;
                             return expose({{"demo", MetricType::gauge, "", "Demo.", {{{}, 1}}}},
                                           format);
                         },
                         GuardedTcpServer::Limits{.connections = 8, .idle = 300ms}};
    quint16 port = 0;
};

TEST_F(MetricsServerTest, AnswersScrapesInTheFormatTheyAcceptAndNothingElse) {
    const QByteArray open = ask("GET /metrics HTTP/1.1\r\nHost: here\r\nAccept: "
                                "application/openmetrics-text;version=1.0.0,text/plain;q=0.5\r\n\r\n");
    EXPECT_TRUE(open.startsWith("HTTP/1.1 200 OK\r\n")) << open.toStdString();
    EXPECT_TRUE(open.contains("Content-Type: application/openmetrics-text; version=1.0.0"));
    EXPECT_TRUE(body(open).endsWith("# EOF\n"));

    const QByteArray text = ask("GET /metrics HTTP/1.1\r\nHost: here\r\n\r\n");
    EXPECT_TRUE(text.contains("Content-Type: text/plain; version=0.0.4"));
    EXPECT_EQ(body(text), "# TYPE demo gauge\n# HELP demo Demo.\ndemo 1\n");

    // HEAD: the length of the body it does not get.
    const QByteArray head = ask("HEAD /metrics HTTP/1.1\r\nHost: here\r\n\r\n");
    EXPECT_TRUE(head.contains("Content-Length: " + QByteArray::number(body(text).size())));
    EXPECT_TRUE(body(head).isEmpty());

    EXPECT_TRUE(body(ask("GET / HTTP/1.1\r\n\r\n")).contains("href=\"/metrics\""));
    EXPECT_TRUE(ask("GET /metrics/x HTTP/1.1\r\n\r\n").startsWith("HTTP/1.1 404"));
    const QByteArray post = ask("POST /metrics HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
    EXPECT_TRUE(post.startsWith("HTTP/1.1 405")) << post.toStdString();
    EXPECT_TRUE(post.contains("Allow: GET, HEAD"));
    EXPECT_EQ(renders, 3);
}

TEST_F(MetricsServerTest, AScraperKeepsItsConnectionAcrossScrapes) {
    Client scraper(port);
    for (int scrape = 0; scrape < 3; ++scrape) {
        scraper.send("GET /metrics HTTP/1.1\r\nHost: here\r\n\r\n");
        EXPECT_TRUE(scraper.answer().startsWith("HTTP/1.1 200 OK")) << scrape;
        scraper.forget();
        EXPECT_FALSE(scraper.closed());
    }
}

TEST_F(MetricsServerTest, BadRequestsGetAShortErrorAndAreClosed) {
    const std::vector<std::pair<QByteArray, QByteArray>> cases{
        {"HELLO\r\n\r\n", "400"},
        {QByteArray("\x00\x01\x02\r\n\r\n", 7), "400"},
        {"GXT /metrics HTTP/1.1\r\n\r\n", "400"},
        {"GET /metrics HTTP/2.0\r\n\r\n", "400"},
        {"GET /metrics HTTP/1.1\r\nNo colon here\r\n\r\n", "400"},
        {"GET /metrics HTTP/1.1\r\nBad name: x\r\n\r\n", "400"},
        {"GET /" + QByteArray(5000, 'a') + " HTTP/1.1\r\n\r\n", "414"},
        {"GET /metrics HTTP/1.1\r\nX: " + QByteArray(20000, 'a') + "\r\n\r\n", "431"},
        {"GET /metrics HTTP/1.1\r\nContent-Length: 5\r\n\r\nhello", "413"},
        {"GET /metrics HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", "413"},
    };
    for (const auto& [request, status] : cases) {
        Client client(port);
        client.send(request);
        const QByteArray answer = client.answer();
        EXPECT_TRUE(answer.startsWith("HTTP/1.1 " + status)) << request.left(40).toStdString()
                                                             << " → " << answer.toStdString();
        EXPECT_TRUE(client.closesSoon()) << request.left(40).toStdString();
    }
    EXPECT_EQ(renders, 0);
}

TEST_F(MetricsServerTest, SlowAndIdleConnectionsAreClosed) {
    Client slow(port);
    slow.send("GET /metrics HTTP/1.1\r\nHost: he");
    EXPECT_TRUE(slow.answer().startsWith("HTTP/1.1 408"));
    EXPECT_TRUE(slow.closesSoon());

    Client silent(port);
    EXPECT_TRUE(silent.closesSoon());
    EXPECT_TRUE(silent.answer().isEmpty());
}

TEST_F(MetricsServerTest, ManyIdleConnectionsStayFewAndAScrapeStillGetsThrough) {
    std::list<Client> idle;
    // One after another, as the server takes them: opened all at once, most
    // would wait in the kernel's queue.
    for (int i = 0; i < 200; ++i) {
        const Client& client = idle.emplace_back(port);
        processEventsUntil([&] { return client.connected(); });
        QCoreApplication::processEvents();
    }
    int open = 0;
    processEventsUntil([&] {
        open = static_cast<int>(std::count_if(idle.begin(), idle.end(),
                                              [](const Client& c) { return !c.closed(); }));
        return open <= 8;
    });
    EXPECT_LE(open, 8);
    EXPECT_TRUE(ask("GET /metrics HTTP/1.1\r\n\r\n").startsWith("HTTP/1.1 200 OK"));
    EXPECT_TRUE(processEventsUntil([&] {
        return std::all_of(idle.begin(), idle.end(), [](const Client& c) { return c.closed(); });
    }));
    EXPECT_TRUE(processEventsUntil(
        [&] { return server.findChild<GuardedTcpServer*>()->openConnections() == 0; }));
}

TEST_F(MetricsServerTest, APortInUseIsRefusedInWords) {
    MetricsServer second([](ExpositionFormat) { return std::string(); });
    const auto error = second.start({"127.0.0.1", port});
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->contains(QStringLiteral("in use"))) << error->toStdString();
    EXPECT_TRUE(second.start({"not-an-address", 0}));
}

} // namespace
} // namespace loadwarden
