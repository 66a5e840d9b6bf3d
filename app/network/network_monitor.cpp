#include "app/network/network_monitor.h"

#include "app/runner/spawn.h"
#include "core/text/utf8_repair.h"

#include <algorithm>
#include <system_error>

#ifdef __APPLE__
#include <pthread/qos.h>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace loadwarden {

namespace {

// The tool is background work; what it spawns inherits this.
void lowerThreadPriority() {
#ifdef __APPLE__
    pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
#else
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 10);
#endif
}

} // namespace

NetworkMonitor::NetworkMonitor() : NetworkMonitor(systemNetworkSource(), ToolLimits{}) {}

NetworkMonitor::NetworkMonitor(std::unique_ptr<NetworkSource> source, ToolLimits limits,
                               Clock clock)
    : source_(std::move(source)), limits_(limits), clock_(std::move(clock)) {}

NetworkMonitor::~NetworkMonitor() {
    if (worker_.joinable()) {
        worker_.join();
    }
}

Seconds NetworkMonitor::gap(const SamplingPlan& plan) const {
    const Seconds base = plan.networkInterval(backoff_.factor);
    return latest_ ? base : std::min(base, firstRatesGap);
}

bool NetworkMonitor::poke(const SamplingPlan& plan, Date now) {
    if (!available()) {
        return false;
    }
    {
        const std::lock_guard guard(lock_);
        if (running_ || (lastStart_ && now - *lastStart_ < gap(plan))) {
            return false;
        }
        running_ = true;
        lastStart_ = now;
    }
    // The previous run has cleared running_, so it is finishing or done.
    if (worker_.joinable()) {
        worker_.join();
    }
    try {
        worker_ = std::thread([this] {
            lowerThreadPriority();
            runOnce();
        });
    } catch (const std::system_error&) {
        const std::lock_guard guard(lock_);
        running_ = false;
        return false;
    }
    return true;
}

void NetworkMonitor::runOnce() {
    const auto result =
        Spawn::run(source_->toolPath(), source_->arguments(), limits_.timeout, limits_.cpuLimit);
    const Date end = clock_();
    // A killed run's partial output is never used.
    std::optional<NetworkSample> sample;
    if (result && !result->stopped) {
        sample = source_->sample(repairUTF8(result->output));
    }

    const std::lock_guard guard(lock_);
    running_ = false;
    if (!result) {
        return;
    }
    ++runs_;
    totalCPU_ += result->cpuSeconds;
    backoff_.record(result->stopped, result->cpuSeconds);
    if (!sample) {
        return;
    }
    if (previous_) {
        latest_.emplace(
            end, MeasuredNetworkRates{.since = previous_->first,
                                      .byPID = NetworkRates::compute(previous_->second, *sample,
                                                                     end - previous_->first)});
    }
    previous_.emplace(end, std::move(*sample));
}

std::optional<MeasuredNetworkRates> NetworkMonitor::rates(const SamplingPlan& plan,
                                                          Date now) const {
    const std::lock_guard guard(lock_);
    if (!latest_ || now - latest_->first >= plan.networkStaleAfter(backoff_.factor)) {
        return std::nullopt;
    }
    return latest_->second;
}

int NetworkMonitor::runs() const {
    const std::lock_guard guard(lock_);
    return runs_;
}

double NetworkMonitor::totalCPU() const {
    const std::lock_guard guard(lock_);
    return totalCPU_;
}

std::string_view NetworkMonitor::coverageNote() const {
    return available() ? source_->coverageNote() : std::string_view();
}

} // namespace loadwarden
