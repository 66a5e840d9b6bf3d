#include "app/linux/kernel_files.h"

#include "core/text_parsing.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::size_t readChunk = 4096;

class Descriptor {
public:
    explicit Descriptor(const std::string& path)
        : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return fd_ >= 0; }
    // Reads up to `limit` more bytes onto the end of `into`; false on an error.
    bool readInto(std::string& into, std::size_t limit) const {
        while (limit > 0) {
            const std::size_t start = into.size();
            const std::size_t wanted = std::min(limit, readChunk);
            into.resize(start + wanted);
            const ssize_t got = ::read(fd_, into.data() + start, wanted);
            if (got < 0 && errno == EINTR) {
                into.resize(start);
                continue;
            }
            into.resize(start + static_cast<std::size_t>(got > 0 ? got : 0));
            if (got <= 0) {
                return got == 0;
            }
            limit -= static_cast<std::size_t>(got);
        }
        return true;
    }

private:
    int fd_;
};

template <typename Visit>
void forEachEntry(const std::string& directory, Visit&& visit) {
    DIR* stream = ::opendir(directory.c_str());
    if (stream == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            visit(name);
        }
    }
    ::closedir(stream);
}

} // namespace

bool KernelFiles::read(const std::string& path, std::string& into) {
    into.clear();
    const Descriptor file(path);
    return file.isOpen() && file.readInto(into, std::string::npos);
}

std::optional<std::string> KernelFiles::text(const std::string& path) {
    std::string contents;
    if (!read(path, contents)) {
        return std::nullopt;
    }
    return contents;
}

std::optional<std::string> KernelFiles::head(const std::string& path, std::size_t count) {
    std::string contents;
    const Descriptor file(path);
    if (!file.isOpen() || !file.readInto(contents, count)) {
        return std::nullopt;
    }
    return contents;
}

std::optional<std::string> KernelFiles::linkTarget(const std::string& path) {
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0 || static_cast<std::size_t>(length) >= target.size()) {
        return std::nullopt;
    }
    target.resize(static_cast<std::size_t>(length));
    return target;
}

std::vector<std::string> KernelFiles::entries(const std::string& directory) {
    std::vector<std::string> names;
    forEachEntry(directory, [&names](std::string_view name) { names.emplace_back(name); });
    return names;
}

std::vector<int> KernelFiles::processIDs() {
    std::vector<int> pids;
    forEachEntry("/proc", [&pids](std::string_view name) {
        if (const auto pid = parseInteger<int>(name); pid && *pid > 0) {
            pids.push_back(*pid);
        }
    });
    return pids;
}

} // namespace loadwarden
