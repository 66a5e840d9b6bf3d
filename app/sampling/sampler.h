#pragma once

#include "app/foundation/clock.h"
#include "app/foundation/serial_executor.h"
#include "app/network/network_monitor.h"
#include "app/sampling/sample_source.h"
#include "app/sampling/sampler_backend.h"
#include "app/sampling/snapshot.h"
#include "core/measurement/rates.h"
#include "core/measurement/sampling_plan.h"

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace loadwarden {

// The one object that reads the machine. It keeps what the previous tick
// saw, so every rate is a difference over the real elapsed time, and caches
// what cannot change during a process's life. Its operations run one at a
// time on its own thread; callers wait on the futures.
class Sampler final : public SampleSource {
public:
    static constexpr Seconds diskSpaceMaximumAge = 30.0;

    // This machine, through its platform backend and network tool.
    Sampler();
    // network: the tool behind per-process network rates; none, never measured.
    Sampler(std::unique_ptr<SamplerBackend> backend, std::unique_ptr<NetworkSource> network,
            Clock clock);
    ~Sampler() override;
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    // One full tick: every process with its rates, and the system figures.
    std::future<Snapshot> sample(bool windowVisible, bool networkShown, Seconds interval);

    // Fresh processor and memory figures on top of the last system sample,
    // for ticks that read no processes. Nothing else changes.
    std::future<SystemSample> quickSystemSample();

    void sample(const SamplingPlan& plan, std::function<void(Snapshot)> done) override;
    void quickSystemSample(std::function<void(SystemSample)> done) override;

    // What the per-process network figures cover, where the tool sees less
    // than every connection; empty otherwise. Fixed for the sampler's life.
    std::string_view networkCoverageNote() const { return network_.coverageNote(); }

private:
    // Facts read once per process life; stale once the start time or the
    // command differs (a reused pid, or a new program run by the same process).
    struct Fixed {
        Date started = 0.0;
        std::string command;
        ProcessFacts facts;
    };

    // A pid of the last process table: its lasting facts and what the next
    // rates are measured from. Kept in place from tick to tick.
    struct Known {
        std::optional<Fixed> fixed;
        ProcessCounters counters;
        std::optional<Seconds> readAt;
        std::uint64_t table = 0; // the last table that had the pid
    };

    Snapshot tick(const SamplingPlan& plan);
    std::vector<LiveProcess> liveProcesses(Date now,
                                           const std::optional<MeasuredNetworkRates>& network);
    ProcessRecord completed(ProcessReading reading, const ProcessFacts& facts,
                            std::uint32_t ownUID);
    const ProcessFacts& factsFor(Known& known, const ProcessReading& reading);
    const std::string& userName(std::uint32_t uid);
    SystemSample systemSample(Seconds interval, Date now);
    void readProcessors(SystemSample& sample);
    void refreshDiskSpace(Date now);
    SystemSample quickSample();

    std::unique_ptr<SamplerBackend> backend_;
    Clock clock_;
    std::unordered_map<std::int32_t, Known> known_;
    std::uint64_t table_ = 0;                  // counts the process tables read
    std::optional<Date> previousDate_; // the tick known_ was read at
    std::vector<CPUTicks> previousTicks_;
    std::optional<ByteCounters> previousDisk_;
    std::optional<ByteCounters> previousIf_;
    std::optional<Date> lastDate_;
    SystemSample lastSystem_;
    std::unordered_map<std::uint32_t, std::string> userNames_;
    std::optional<DiskSpace> diskSpace_;
    std::optional<Date> diskSpaceRead_; // absent: never, as if in the distant past
    NetworkMonitor network_;
    SerialExecutor executor_; // last: its thread stops before the state above goes away
};

} // namespace loadwarden
