#include "app/control/reopening.h"

#include "app/sampling/linux/kernel_files.h"
#include "core/measurement/linux/process_files.h"

namespace loadwarden {

std::optional<Reopening> reopeningOf(const ProcessGroup& group) {
    const std::int32_t pid = group.leader.record.pid;
    const std::vector<std::string> words =
        arguments(KernelFiles::text(KernelFiles::processFile(pid, "cmdline")).value_or(""));
    if (words.empty()) {
        return std::nullopt; // gone, or a kernel thread
    }
    const std::string& path = group.leader.record.path;
    return Reopening{
        .program = path.empty() ? words.front() : path,
        .arguments = {words.begin() + 1, words.end()},
        .folder = KernelFiles::linkTarget(KernelFiles::processFile(pid, "cwd")).value_or("")};
}

} // namespace loadwarden
