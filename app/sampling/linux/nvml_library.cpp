#include "app/sampling/linux/nvml_library.h"

#include <algorithm>
#include <dlfcn.h>

namespace loadwarden {

namespace {

// The library's C interface, as its documentation declares it.
using NvmlReturn = int;
constexpr NvmlReturn success = 0;
constexpr NvmlReturn insufficientSize = 7;
using NvmlDevice = void*;

struct NvmlUtilization {
    unsigned int gpu;    // percent of the sample period a kernel ran
    unsigned int memory; // percent of it memory was read or written
};

struct NvmlProcessSample {
    unsigned int pid;
    unsigned long long timeStamp; // µs of the CPU's clock
    unsigned int smUtil;
    unsigned int memUtil;
    unsigned int encUtil;
    unsigned int decUtil;
};

template <typename Function>
Function* symbol(void* handle, const char* name) {
    return reinterpret_cast<Function*>(dlsym(handle, name));
}

} // namespace

struct NvmlLibrary::Api {
    NvmlReturn (*shutdown)();
    NvmlReturn (*utilization)(NvmlDevice, NvmlUtilization*);
    NvmlReturn (*processUtilization)(NvmlDevice, NvmlProcessSample*, unsigned int*,
                                     unsigned long long);
};

std::unique_ptr<NvmlLibrary> NvmlLibrary::load(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return nullptr;
    }
    const auto init = symbol<NvmlReturn()>(handle, "nvmlInit_v2");
    const auto count = symbol<NvmlReturn(unsigned int*)>(handle, "nvmlDeviceGetCount_v2");
    const auto byIndex =
        symbol<NvmlReturn(unsigned int, NvmlDevice*)>(handle, "nvmlDeviceGetHandleByIndex_v2");
    auto api = std::make_unique<Api>(Api{
        .shutdown = symbol<NvmlReturn()>(handle, "nvmlShutdown"),
        .utilization = symbol<NvmlReturn(NvmlDevice, NvmlUtilization*)>(
            handle, "nvmlDeviceGetUtilizationRates"),
        .processUtilization =
            symbol<NvmlReturn(NvmlDevice, NvmlProcessSample*, unsigned int*, unsigned long long)>(
                handle, "nvmlDeviceGetProcessUtilization"),
    });
    if (!init || !count || !byIndex || !api->shutdown || !api->utilization ||
        !api->processUtilization || init() != success) {
        dlclose(handle);
        return nullptr;
    }
    unsigned int devices = 0;
    std::vector<void*> found;
    if (count(&devices) == success) {
        for (unsigned int index = 0; index < devices; ++index) {
            NvmlDevice device = nullptr;
            if (byIndex(index, &device) == success) {
                found.push_back(device);
            }
        }
    }
    return std::unique_ptr<NvmlLibrary>(new NvmlLibrary(handle, std::move(api), std::move(found)));
}

NvmlLibrary::NvmlLibrary(void* handle, std::unique_ptr<Api> api, std::vector<void*> devices)
    : handle_(handle), api_(std::move(api)), devices_(std::move(devices)),
      lastSeen_(devices_.size(), 0) {}

NvmlLibrary::~NvmlLibrary() {
    api_->shutdown();
    dlclose(handle_);
}

std::vector<double> NvmlLibrary::deviceBusy() {
    std::vector<double> busy;
    for (void* device : devices_) {
        NvmlUtilization utilization{};
        if (api_->utilization(device, &utilization) == success) {
            busy.push_back(std::min(utilization.gpu, 100u) / 100.0);
        }
    }
    return busy;
}

std::map<std::int32_t, double> NvmlLibrary::processPercent() {
    std::map<std::int32_t, double> percent;
    std::vector<NvmlProcessSample> samples;
    for (std::size_t index = 0; index < devices_.size(); ++index) {
        // The first call asks how many samples there are; no new sample at
        // all is an error of its own, and nothing to add.
        unsigned int count = 0;
        const NvmlReturn sized =
            api_->processUtilization(devices_[index], nullptr, &count, lastSeen_[index]);
        if ((sized != success && sized != insufficientSize) || count == 0) {
            continue;
        }
        samples.resize(count);
        if (api_->processUtilization(devices_[index], samples.data(), &count, lastSeen_[index]) !=
            success) {
            continue;
        }
        samples.resize(std::min<std::size_t>(count, samples.size()));
        for (const auto& sample : samples) {
            percent[static_cast<std::int32_t>(sample.pid)] += std::min(sample.smUtil, 100u);
            lastSeen_[index] = std::max<std::uint64_t>(lastSeen_[index], sample.timeStamp);
        }
    }
    return percent;
}

} // namespace loadwarden
