#include "shell/serve/model_metrics.h"

#include "core/metrics/machine_metrics.h"

namespace loadwarden {

namespace {

// Every cause the explainer finds; it finds only a few at a time.
constexpr std::size_t mostCauses = 20;

} // namespace

ModelMetrics::ModelMetrics(AppModel& model, std::size_t shownApps, QObject* parent)
    : QObject(parent), model_(model), shownApps_(shownApps) {
    connect(&model, &AppModel::sampled, this, [this](Seconds interval) {
        counters_.record(model_.latestGroups(), model_.latestSystem(), interval, shownApps_);
        // The first tick has no rates yet: everything would read 0.
        ready_ = ready_ || interval > 0;
    });
}

std::string ModelMetrics::render(ExpositionFormat format) const {
    if (!ready_) {
        return expose({}, format);
    }
    const std::vector<Cause> causes = Explainer::explain(model_.picture(), mostCauses);
    const std::map<std::string, double> limits = model_.controller().limits();
    return expose(machineMetrics({.system = model_.latestSystem(),
                                  .groups = model_.latestGroups(),
                                  .counters = counters_,
                                  .limits = limits,
                                  .causes = causes,
                                  .alertsRaised = model_.alertsRaised(),
                                  .selfPID = model_.myPID()}),
                  format);
}

} // namespace loadwarden
