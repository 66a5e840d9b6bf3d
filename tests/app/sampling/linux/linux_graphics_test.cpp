#include "app/sampling/linux/linux_graphics.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

// The test double of NVIDIA's library, reached by the same path the
// program loads it by; its setters come from the same loaded copy.
class NvmlDouble {
public:
    NvmlDouble() : handle_(dlopen(NVML_DOUBLE_PATH, RTLD_NOW | RTLD_LOCAL)) {}
    ~NvmlDouble() { dlclose(handle_); }
    NvmlDouble(const NvmlDouble&) = delete;
    NvmlDouble& operator=(const NvmlDouble&) = delete;

    void reset(int devices, bool failInit = false) { call("nvmlDoubleReset", devices, failInit); }
    void setBusy(int device, unsigned int percent) { call("nvmlDoubleSetBusy", device, percent); }
    void addSample(int device, unsigned int pid, unsigned long long timeStamp,
                   unsigned int smUtil) {
        call("nvmlDoubleAddSample", device, pid, timeStamp, smUtil);
    }
    int shutdowns() { return call<int>("nvmlDoubleShutdowns"); }

private:
    // The double's function of that name, called with arguments of exactly
    // the types it was declared with.
    template <typename Result = void, typename... Arguments>
    Result call(const char* name, Arguments... arguments) {
        const auto function = reinterpret_cast<Result (*)(Arguments...)>(dlsym(handle_, name));
        if (function == nullptr) {
            throw std::runtime_error(std::string("the double lacks ") + name);
        }
        return function(arguments...);
    }

    void* handle_;
};

ProcessReading reading(std::int32_t pid) {
    return ProcessReading{.record = {.pid = pid, .started = 100.0}, .command = "worker"};
}

std::vector<std::optional<double>> percents(const std::vector<ProcessReading>& readings) {
    std::vector<std::optional<double>> result;
    for (const auto& each : readings) {
        result.push_back(each.gpuPercent);
    }
    return result;
}

TEST(Nvml, AbsentWithoutTheLibraryOrItsDriver) {
    EXPECT_FALSE(NvmlLibrary::load("/nonexistent/libnvidia-ml.so.1"));
    NvmlDouble nvml;
    nvml.reset(1, /*failInit=*/true);
    EXPECT_FALSE(NvmlLibrary::load(NVML_DOUBLE_PATH));
}

TEST(Nvml, BusiestDeviceAndEachProcessesShareAddedOverDevices) {
    NvmlDouble nvml;
    nvml.reset(2);
    nvml.setBusy(0, 35);
    nvml.setBusy(1, 90);
    // A training job on both cards, and a viewer on the second.
    nvml.addSample(0, 4100, 10, 60);
    nvml.addSample(1, 4100, 11, 30);
    nvml.addSample(1, 4200, 12, 5);
    {
        LinuxGraphics graphics(NvmlLibrary::load(NVML_DOUBLE_PATH));
        std::vector<ProcessReading> readings{reading(4100), reading(4200), reading(4300)};
        graphics.measure(readings);
        EXPECT_EQ(percents(readings), (std::vector<std::optional<double>>{90.0, 5.0, {}}));
        EXPECT_EQ(graphics.busy(), 0.9);

        // Only samples newer than those already read count; a process the
        // driver no longer saw at work has no figure.
        nvml.addSample(1, 4200, 20, 40);
        graphics.measure(readings);
        EXPECT_EQ(percents(readings), (std::vector<std::optional<double>>{{}, 40.0, {}}));
    }
    EXPECT_EQ(nvml.shutdowns(), 1) << "the library is shut down with the reader";
}

TEST(Nvml, NoDeviceGivesNoFigure) {
    NvmlDouble nvml;
    nvml.reset(0);
    LinuxGraphics graphics(NvmlLibrary::load(NVML_DOUBLE_PATH));
    std::vector<ProcessReading> readings{reading(4100)};
    graphics.measure(readings);
    EXPECT_FALSE(readings[0].gpuPercent);
}

} // namespace
} // namespace loadwarden
