// A stand-in for NVIDIA's management library: the same C entry points, with
// figures that the tests set through the nvmlDouble functions at the end.

#include <algorithm>
#include <vector>

namespace {

struct Utilization {
    unsigned int gpu;
    unsigned int memory;
};

struct ProcessSample {
    unsigned int pid;
    unsigned long long timeStamp;
    unsigned int smUtil;
    unsigned int memUtil;
    unsigned int encUtil;
    unsigned int decUtil;
};

constexpr int success = 0;
constexpr int invalidArgument = 2;
constexpr int notFound = 6;
constexpr int insufficientSize = 7;
constexpr int driverNotLoaded = 9;

struct Device {
    unsigned int busyPercent = 0;
    std::vector<ProcessSample> samples;
};

bool initFails = false;
int shutdowns = 0;
std::vector<Device> devices;

} // namespace

extern "C" {

int nvmlInit_v2() {
    return initFails ? driverNotLoaded : success;
}

int nvmlShutdown() {
    ++shutdowns;
    return success;
}

int nvmlDeviceGetCount_v2(unsigned int* count) {
    *count = static_cast<unsigned int>(devices.size());
    return success;
}

int nvmlDeviceGetHandleByIndex_v2(unsigned int index, void** device) {
    if (index >= devices.size()) {
        return invalidArgument;
    }
    *device = &devices[index];
    return success;
}

// A handle is the address of its device.
int nvmlDeviceGetUtilizationRates(void* handle, Utilization* utilization) {
    *utilization = Utilization{.gpu = static_cast<Device*>(handle)->busyPercent, .memory = 0};
    return success;
}

int nvmlDeviceGetProcessUtilization(void* handle, ProcessSample* samples, unsigned int* count,
                                    unsigned long long lastSeenTimeStamp) {
    const auto& all = static_cast<Device*>(handle)->samples;
    std::vector<ProcessSample> newer;
    std::copy_if(all.begin(), all.end(), std::back_inserter(newer),
                 [=](const ProcessSample& sample) { return sample.timeStamp > lastSeenTimeStamp; });
    if (newer.empty()) {
        return notFound;
    }
    if (samples == nullptr || *count < newer.size()) {
        *count = static_cast<unsigned int>(newer.size());
        return insufficientSize;
    }
    std::copy(newer.begin(), newer.end(), samples);
    *count = static_cast<unsigned int>(newer.size());
    return success;
}

void nvmlDoubleReset(int deviceCount, bool failInit) {
    devices.assign(static_cast<std::size_t>(deviceCount), Device{});
    initFails = failInit;
    shutdowns = 0;
}

void nvmlDoubleSetBusy(int device, unsigned int percent) {
    devices[static_cast<std::size_t>(device)].busyPercent = percent;
}

void nvmlDoubleAddSample(int device, unsigned int pid, unsigned long long timeStamp,
                         unsigned int smUtil) {
    devices[static_cast<std::size_t>(device)].samples.push_back(
        ProcessSample{.pid = pid, .timeStamp = timeStamp, .smUtil = smUtil});
}

int nvmlDoubleShutdowns() {
    return shutdowns;
}
}
