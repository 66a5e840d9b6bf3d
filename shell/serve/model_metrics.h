#pragma once

#include "app/model/app_model.h"
#include "core/metrics/exposition.h"
#include "core/metrics/usage_counters.h"

#include <QObject>

#include <cstddef>
#include <string>

namespace loadwarden {

// One model's figures for a scraper: it counts what each tick adds and
// writes out the last tick, never sampling anything itself.
class ModelMetrics : public QObject {
    Q_OBJECT

public:
    // The `shownApps` busiest apps have series of their own; the rest share one.
    ModelMetrics(AppModel& model, std::size_t shownApps, QObject* parent = nullptr);

    // Empty of figures until the model has measured over a whole tick.
    std::string render(ExpositionFormat format) const;

private:
    AppModel& model_;
    std::size_t shownApps_;
    UsageCounters counters_;
    bool ready_ = false;
};

} // namespace loadwarden
