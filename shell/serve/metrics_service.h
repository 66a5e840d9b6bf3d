#pragma once

#include "app/model/app_model.h"
#include "core/metrics/listen_address.h"
#include "shell/serve/metrics_server.h"
#include "shell/serve/model_metrics.h"

#include <QObject>
#include <QString>

#include <cstddef>
#include <optional>

namespace loadwarden {

// A model's figures served to Prometheus: what `loadwarden serve` and the
// window's setting run beside the one model they already have.
class MetricsService : public QObject {
    Q_OBJECT

public:
    MetricsService(AppModel& model, std::size_t shownApps,
                   GuardedTcpServer::Limits limits = {}, QObject* parent = nullptr);

    // Starts answering at `address`; why it cannot, in words, when it cannot.
    std::optional<QString> start(const ListenAddress& address);
    // Where the figures are, once started.
    QString url() const;

private:
    ModelMetrics metrics_;
    MetricsServer server_;
    ListenAddress address_;
};

} // namespace loadwarden
