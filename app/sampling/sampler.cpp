#include "app/sampling/sampler.h"

#include "core/foundation/checked_arithmetic.h"

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
    ++table_;
    std::vector<LiveProcess> live;
    live.reserve(readings.size());
    for (auto& reading : readings) {
        const auto readAt = reading.readAt;
        const auto gpuPercent = reading.gpuPercent;
        const auto [entry, isNew] = known_.try_emplace(reading.record.pid);
        Known& known = entry->second;
        const ProcessFacts& facts = factsFor(known, reading);
        ProcessRecord record = completed(std::move(reading), facts, ownUID);
        const ProcessCounters counters = ProcessCounters::of(record);
        Seconds elapsed = interval;
        if (!isNew && interval > 0.0 && readAt && known.readAt) {
            elapsed = *readAt - *known.readAt;
        }
        ProcessRates rates = Rates::compute(isNew ? nullptr : &known.counters, counters, elapsed);
        rates.gpuPercent = gpuPercent;
        if (const auto traffic = network ? NetworkRates::rateOf(*network, record) : std::nullopt) {
            rates.networkInPerSecond = traffic->in;
            rates.networkOutPerSecond = traffic->out;
        }
        known.counters = counters;
        known.readAt = readAt;
        known.table = table_;
        live.push_back(LiveProcess{std::move(record), rates});
    }
    std::erase_if(known_, [this](const auto& entry) { return entry.second.table != table_; });
    previousDate_ = now;
    return live;
}

ProcessRecord Sampler::completed(ProcessReading reading, const ProcessFacts& facts,
                                 std::uint32_t ownUID) {
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

const ProcessFacts& Sampler::factsFor(Known& known, const ProcessReading& reading) {
    if (!known.fixed || known.fixed->started != reading.record.started ||
        known.fixed->command != reading.command) {
        known.fixed = Fixed{.started = reading.record.started,
                            .command = reading.command,
                            .facts = backend_->facts(reading)};
    }
    return known.fixed->facts;
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
