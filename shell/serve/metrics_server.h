#pragma once

#include "core/metrics/exposition.h"
#include "core/metrics/listen_address.h"
#include "shell/serve/guarded_tcp_server.h"

#include <QAbstractHttpServer>
#include <QString>

#include <functional>
#include <optional>
#include <string>

namespace loadwarden {

// Answers scrapers over HTTP: GET or HEAD of "/metrics" with the figures in
// the format the request accepts, "/" with a page that says where they are.
// It runs on the thread of the model it reports, so a scrape always sees a
// whole tick.
class MetricsServer : public QAbstractHttpServer {
    Q_OBJECT

public:
    using Render = std::function<std::string(ExpositionFormat)>;

    explicit MetricsServer(Render render, GuardedTcpServer::Limits limits = {},
                           QObject* parent = nullptr);

    // Listens at `address`; why it cannot, in words, when it cannot.
    std::optional<QString> start(const ListenAddress& address);
    // The port it listens on, once started.
    quint16 port() const { return tcp_->serverPort(); }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    Render render_;
    GuardedTcpServer* tcp_; // a child
};

} // namespace loadwarden
