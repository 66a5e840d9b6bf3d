#include "shell/serve/metrics_server.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>

namespace loadwarden {

namespace {

using Status = QHttpServerResponder::StatusCode;

constexpr QByteArrayView metricsPath = "/metrics";

const QByteArray homePage =
    "<!DOCTYPE html>\n<html><head><title>Loadwarden</title></head><body>\n"
    "<h1>Loadwarden</h1>\n"
    "<p>The figures of this computer for Prometheus are at <a href=\"/metrics\">/metrics</a>.</p>\n"
    "</body></html>\n";

// Written by hand so that HEAD gets the length of the body it does not get.
void answer(QHttpServerResponder& responder, const QHttpServerRequest& request, Status status,
            QByteArrayView type, const QByteArray& body, bool allowHeader = false) {
    responder.writeStatusLine(status);
    responder.writeHeader("Content-Type", type.toByteArray());
    responder.writeHeader("Content-Length", QByteArray::number(body.size()));
    if (allowHeader) {
        responder.writeHeader("Allow", "GET, HEAD");
    }
    responder.writeBody(request.method() == QHttpServerRequest::Method::Head ? QByteArray()
                                                                            : body);
}

} // namespace

MetricsServer::MetricsServer(Render render, GuardedTcpServer::Limits limits, QObject* parent)
    : QAbstractHttpServer(parent), render_(std::move(render)),
      tcp_(new GuardedTcpServer(limits, this)) {}

std::optional<QString> MetricsServer::start(const ListenAddress& address) {
    const QString host = QString::fromStdString(address.host);
    QHostAddress bound;
    if (host == QLatin1String("localhost")) {
        bound = QHostAddress::LocalHost;
    } else if (host == QLatin1String("::")) {
        bound = QHostAddress::Any; // as the system's own servers do: IPv4 as well
    } else if (!bound.setAddress(host)) {
        return QStringLiteral("“%1” is not an IP address").arg(host);
    }
    if (!tcp_->listen(bound, address.port)) {
        return tcp_->errorString();
    }
    bind(tcp_);
    return std::nullopt;
}

bool MetricsServer::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
    tcp_->answered(socket);
    QHttpServerResponder responder = makeResponder(request, socket);
    const auto method = request.method();
    const QString path = request.url().path();
    constexpr QByteArrayView plain = "text/plain; charset=utf-8";
    if (method != QHttpServerRequest::Method::Get && method != QHttpServerRequest::Method::Head) {
        answer(responder, request, Status::MethodNotAllowed, plain,
               "Only GET and HEAD are answered here.\n", true);
    } else if (path == QLatin1String(metricsPath)) {
        const ExpositionFormat format = negotiateFormat(request.value("Accept").toStdString());
        const std::string body = render_(format);
        answer(responder, request, Status::Ok, QByteArrayView(contentType(format)),
               QByteArray(body.data(), static_cast<qsizetype>(body.size())));
    } else if (path == QLatin1String("/")) {
        answer(responder, request, Status::Ok, "text/html; charset=utf-8", homePage);
    } else {
        answer(responder, request, Status::NotFound, plain,
               "Nothing here: the figures are at /metrics.\n");
    }
    return true;
}

void MetricsServer::missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) {
    QHttpServerResponder responder = makeResponder(request, socket);
    answer(responder, request, Status::NotFound, "text/plain; charset=utf-8", "Not found.\n");
}

} // namespace loadwarden
