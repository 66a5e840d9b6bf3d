#pragma once

#include "app/control/defaults_store.h"
#include "app/model/app_model.h"
#include "shell/serve/metrics_service.h"

#include <QObject>

#include <memory>

namespace loadwarden {

// The window's offer of its figures to Prometheus, off until the user turns
// it on: the window's own model served on every address of the computer, so
// that a Prometheus elsewhere can scrape it. Kept beside the settings.
class PrometheusSharing : public QObject {
    Q_OBJECT

public:
    explicit PrometheusSharing(AppModel& model, DefaultsStore defaults = {},
                               QObject* parent = nullptr);
    ~PrometheusSharing() override;

    bool isOn() const { return on_; }
    quint16 port() const { return port_; }
    // Saved at once; a port that cannot be had becomes the model's problem.
    void set(bool on, quint16 port);

signals:
    void changed();

private:
    void apply();

    AppModel& model_;
    DefaultsStore defaults_;
    bool on_ = false;
    quint16 port_ = ListenAddress::defaultPort;
    std::unique_ptr<MetricsService> service_;
};

} // namespace loadwarden
