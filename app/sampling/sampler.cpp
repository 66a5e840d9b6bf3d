#include "app/sampling/sampler.h"

#include "core/foundation/checked_arithmetic.h"
#include "core/measurement/rates.h"

#include <utility>

namespace loadwarden {

namespace {

struct RatePair {
    double in = 0.0;
    double out = 0.0;
};

// Rates against the last successful reading, which a failed reading keeps.
RatePair advance(std::optional<ByteCounters>& previous, const std::optional<ByteCounters>& reading,
                 Seconds interval) {
    if (!reading) {
        return {};
    }
    RatePair rates;
    if (previous && interval > 0.0) {
        rates.in = static_cast<double>(counterDelta(previous->in, reading->in)) / interval;
        rates.out = static_cast<double>(counterDelta(previous->out, reading->out)) / interval;
    }
    previous = reading;
    return rates;
}

} // namespace

Sampler::Sampler() : Sampler(makePlatformBackend(), systemNetworkSource(), currentDate) {}

Sampler::Sampler(std::unique_ptr<SamplerBackend> backend, std::unique_ptr<NetworkSource> network,
                 Clock clock)
    : backend_(std::move(backend)), clock_(std::move(clock)),
      network_(std::move(network), NetworkMonitor::ToolLimits{}, clock_) {}

Sampler::~Sampler() = default;

std::future<Snapshot> Sampler::sample(bool windowVisible, bool networkShown, Seconds interval) {
    const SamplingPlan plan{
        .windowVisible = windowVisible, .networkShown = networkShown, .interval = interval};
    return executor_.submit([this, plan] { return tick(plan); });
}

std::future<SystemSample> Sampler::quickSystemSample() {
    return executor_.submit([this] { return quickSample(); });
}

void Sampler::sample(const SamplingPlan& plan, std::function<void(Snapshot)> done) {
    executor_.submit([this, plan, done = std::move(done)] { done(tick(plan)); });
}

void Sampler::quickSystemSample(std::function<void(SystemSample)> done) {
    executor_.submit([this, done = std::move(done)] { done(quickSample()); });
}

Snapshot Sampler::tick(const SamplingPlan& plan) {
    const Date now = clock_();
    const Seconds interval = lastDate_ ? now - *lastDate_ : 0.0;
    network_.poke(plan, now);
    const auto network = network_.rates(plan, now);
    Snapshot snapshot{
        .date = now,
        .interval = interval,
        .processes = liveProcesses(now, network),
        .system = systemSample(interval, now),
        .hasNetwork = network.has_value(),
    };
    lastSystem_ = snapshot.system;
    lastDate_ = now;
    return snapshot;
}

std::vector<LiveProcess>
Sampler::liveProcesses(Date now, const std::optional<MeasuredNetworkRates>& network) {
    const std::uint32_t ownUID = backend_->currentUID();
    auto readings = backend_->processes();
    // No processes is a failed read: the last good table stays, and the next
    // rates run over the time since it was read, so they neither drop nor jump.
    if (readings.empty()) {
        return {};
    }
    const Seconds interval = previousDate_ ? now - *previousDate_ : 0.0;
    std::vector<LiveProcess> live;
    live.reserve(readings.size());
    std::unordered_map<std::int32_t, Previous> current;
    current.reserve(readings.size());
    for (auto& reading : readings) {
        const auto readAt = reading.readAt;
        const auto gpuPercent = reading.gpuPercent;
        ProcessRecord record = completed(std::move(reading), ownUID);
        const auto before = previous_.find(record.pid);
        std::optional<ProcessRecord> previous;
        Seconds elapsed = interval;
        if (before != previous_.end()) {
            previous = before->second.record;
            if (interval > 0.0 && readAt && before->second.readAt) {
                elapsed = *readAt - *before->second.readAt;
            }
        }
        ProcessRates rates = Rates::compute(previous, record, std::nullopt, std::nullopt, elapsed);
        rates.gpuPercent = gpuPercent;
        if (const auto traffic = network ? NetworkRates::rateOf(*network, record) : std::nullopt) {
            rates.networkInPerSecond = traffic->in;
            rates.networkOutPerSecond = traffic->out;
        }
        current.insert_or_assign(record.pid, Previous{record, readAt});
        live.push_back(LiveProcess{std::move(record), rates});
    }
    previous_ = std::move(current);
    previousDate_ = now;
    std::erase_if(fixed_, [this](const auto& entry) { return !previous_.contains(entry.first); });
    return live;
}

ProcessRecord Sampler::completed(ProcessReading reading, std::uint32_t ownUID) {
    const ProcessFacts& facts = factsFor(reading);
    ProcessRecord record = std::move(reading.record);
    record.user = userName(record.uid);
    record.isOwn = record.uid == ownUID;
    record.path = facts.path;
    record.name = facts.name;
    record.responsiblePID = facts.responsiblePID;
    record.arch = facts.arch;
    record.appID = facts.appID;
    record.isSystemService = facts.isSystemService;
    return record;
}

const ProcessFacts& Sampler::factsFor(const ProcessReading& reading) {
    const auto pid = reading.record.pid;
    auto found = fixed_.find(pid);
    if (found == fixed_.end() || found->second.started != reading.record.started ||
        found->second.command != reading.command) {
        Fixed fresh{.started = reading.record.started,
                    .command = reading.command,
                    .facts = backend_->facts(reading)};
        found = fixed_.insert_or_assign(pid, std::move(fresh)).first;
    }
    return found->second.facts;
}

const std::string& Sampler::userName(std::uint32_t uid) {
    auto found = userNames_.find(uid);
    if (found == userNames_.end()) {
        found =
            userNames_.emplace(uid, backend_->userName(uid).value_or(std::to_string(uid))).first;
    }
    return found->second;
}

SystemSample Sampler::systemSample(Seconds interval, Date now) {
    SystemSample sample;
    readProcessors(sample);
    sample.memory = backend_->memory();
    sample.gpu = backend_->gpu();
    const RatePair disk = advance(previousDisk_, backend_->diskCounters(), interval);
    sample.diskReadPerSecond = disk.in;
    sample.diskWritePerSecond = disk.out;
    const RatePair network = advance(previousIf_, backend_->interfaceCounters(), interval);
    sample.networkInPerSecond = network.in;
    sample.networkOutPerSecond = network.out;
    sample.battery = backend_->battery();
    sample.thermal = backend_->thermal();
    sample.lowPowerMode = backend_->lowPowerMode();
    sample.uptime = backend_->uptime();
    refreshDiskSpace(now);
    if (diskSpace_) {
        sample.diskFree = diskSpace_->free;
        sample.diskTotal = diskSpace_->total;
    }
    return sample;
}

void Sampler::readProcessors(SystemSample& sample) {
    ProcessorReading reading = backend_->processors();
    // Without a previous reading of the same cores, every core shows 0.
    sample.coreUsage = CPUMath::coreUsage(previousTicks_, reading.ticks);
    sample.coreKinds = std::move(reading.kinds);
    previousTicks_ = std::move(reading.ticks);
}

void Sampler::refreshDiskSpace(Date now) {
    if (diskSpaceRead_ && now - *diskSpaceRead_ <= diskSpaceMaximumAge) {
        return;
    }
    if (const auto space = backend_->diskSpace()) {
        diskSpace_ = space;
    }
    diskSpaceRead_ = now;
}

SystemSample Sampler::quickSample() {
    SystemSample sample = lastSystem_;
    readProcessors(sample);
    sample.memory = backend_->memory();
    return sample;
}

} // namespace loadwarden
