#include "shell/desktop/prometheus_sharing.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

const std::string onKey = "sharePrometheus";
const std::string portKey = "prometheusPort";
const QString failure = QStringLiteral("Figures couldn’t be shared with Prometheus: ");

} // namespace

PrometheusSharing::PrometheusSharing(AppModel& model, DefaultsStore defaults, QObject* parent)
    : QObject(parent), model_(model), defaults_(std::move(defaults)) {
    on_ = defaults_.read(onKey) == "true";
    if (const auto stored = defaults_.read(portKey)) {
        const auto port = parseInteger<quint16>(*stored);
        port_ = port && *port > 0 ? *port : port_;
    }
    apply();
}

PrometheusSharing::~PrometheusSharing() = default;

void PrometheusSharing::set(bool on, quint16 port) {
    if (on == on_ && port == port_) {
        return;
    }
    on_ = on;
    port_ = port;
    if (!defaults_.write(onKey, on ? "true" : "false") ||
        !defaults_.write(portKey, std::to_string(port))) {
        model_.setProblem(failure + QStringLiteral("the setting couldn’t be saved."));
    }
    apply();
    emit changed();
}

void PrometheusSharing::apply() {
    service_.reset();
    if (on_) {
        service_ = std::make_unique<MetricsService>(model_, UsageCounters::defaultShownApps);
        if (const auto error = service_->start({"::", port_})) {
            service_.reset();
            model_.setProblem(failure + QStringLiteral("port %1: %2").arg(port_).arg(*error));
            return;
        }
    }
    if (model_.problem().startsWith(failure)) {
        model_.clearProblem();
    }
}

} // namespace loadwarden
