#include "shell/serve/metrics_service.h"

namespace loadwarden {

MetricsService::MetricsService(AppModel& model, std::size_t shownApps,
                               GuardedTcpServer::Limits limits, QObject* parent)
    : QObject(parent), metrics_(model, shownApps),
      server_([this](ExpositionFormat format) { return metrics_.render(format); }, limits) {}

std::optional<QString> MetricsService::start(const ListenAddress& address) {
    address_ = address;
    return server_.start(address);
}

QString MetricsService::url() const {
    const QString host = QString::fromStdString(address_.host);
    const QString shown = host.contains(u':') ? u'[' + host + u']' : host;
    return QStringLiteral("http://%1:%2/metrics").arg(shown).arg(server_.port());
}

} // namespace loadwarden
