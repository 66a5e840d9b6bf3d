#include "core/model/graphs.h"

namespace loadwarden {

void Graphs::record(const SystemSample& sample, Date at) {
    recordLight(sample, at);
    readAt.append(at);
    if (cores.size() != sample.coreUsage.size()) {
        cores.assign(sample.coreUsage.size(), Series());
    }
    for (std::size_t core = 0; core < cores.size(); ++core) {
        cores[core].append(sample.coreUsage[core]);
    }
    swap.append(static_cast<double>(sample.memory.swapUsed));
    gpu.append(sample.gpu.value_or(0.0));
    diskRead.append(sample.diskReadPerSecond);
    diskWrite.append(sample.diskWritePerSecond);
    netIn.append(sample.networkInPerSecond);
    netOut.append(sample.networkOutPerSecond);
    battery.append(sample.battery ? sample.battery->percent : 0.0);
}

void Graphs::recordLight(const SystemSample& sample, Date at) {
    cpu.append(sample.cpu());
    memory.append(sample.memory.usedFraction());
    quickReadAt.append(at);
}

} // namespace loadwarden
