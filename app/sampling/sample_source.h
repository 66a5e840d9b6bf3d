#pragma once

#include "app/sampling/snapshot.h"
#include "core/measurement/sampling_plan.h"

#include <functional>

namespace loadwarden {

// What the application model asks of the sampler. Each call returns at once
// and hands its result to `done` later, on the sampler's own thread, so the
// caller's thread never waits on the machine.
class SampleSource {
public:
    virtual ~SampleSource() = default;

    virtual void sample(const SamplingPlan& plan, std::function<void(Snapshot)> done) = 0;
    // Processor and memory only, for the ticks that read no processes.
    virtual void quickSystemSample(std::function<void(SystemSample)> done) = 0;
};

} // namespace loadwarden
