#include "app/sampling/linux/kernel_files.h"

#include "core/foundation/programming_error.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>
#include <utility>

namespace loadwarden {

namespace {

constexpr std::size_t readChunk = 4096;

// Reads up to `limit` bytes from the start of an open file onto the end of `into`.
bool readFromStart(int fd, std::string& into, std::size_t limit) {
    std::size_t offset = 0;
    while (limit > 0) {
        const std::size_t start = into.size();
        const std::size_t wanted = std::min(limit, readChunk);
        into.resize(start + wanted);
        const ssize_t got = ::pread(fd, into.data() + start, wanted, static_cast<off_t>(offset));
        into.resize(start + static_cast<std::size_t>(got > 0 ? got : 0));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return got == 0;
        }
        offset += static_cast<std::size_t>(got);
        limit -= static_cast<std::size_t>(got);
    }
    return true;
}

int openForReading(const char* path) {
    return ::open(path, O_RDONLY | O_CLOEXEC);
}

// The whole of a file written in one piece: read again into a larger buffer
// as long as a read fills it.
std::optional<std::string_view> readOnePiece(int fd, std::string& buffer) {
    if (buffer.size() < readChunk) {
        buffer.resize(readChunk);
    }
    while (true) {
        const ssize_t got = ::pread(fd, buffer.data(), buffer.size(), 0);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return std::nullopt;
        }
        if (static_cast<std::size_t>(got) < buffer.size()) {
            return std::string_view(buffer.data(), static_cast<std::size_t>(got));
        }
        buffer.resize(buffer.size() * 2);
    }
}

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
    const int fd = openForReading(path.c_str());
    if (fd < 0) {
        return false;
    }
    const bool read = readFromStart(fd, into, std::string::npos);
    ::close(fd);
    return read;
}

std::optional<std::string> KernelFiles::text(const std::string& path) {
    std::string contents;
    if (!read(path, contents)) {
        return std::nullopt;
    }
    return contents;
}

std::optional<std::string> KernelFiles::head(const std::string& path, std::size_t count) {
    const int fd = openForReading(path.c_str());
    if (fd < 0) {
        return std::nullopt;
    }
    std::string contents;
    const bool read = readFromStart(fd, contents, count);
    ::close(fd);
    if (!read) {
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

std::vector<std::string> KernelFiles::entriesStartingWith(const std::string& directory,
                                                          const std::string& prefix) {
    std::vector<std::string> paths;
    forEachEntry(directory, [&](std::string_view name) {
        if (name.starts_with(prefix)) {
            paths.push_back(directory + "/" + std::string(name));
        }
    });
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string KernelFiles::processFile(int pid, std::string_view name) {
    return std::string(ProcessFilePath(pid, name).view());
}

ProcessFilePath::ProcessFilePath(int pid, std::string_view name) {
    constexpr std::string_view proc = "/proc/";
    constexpr std::size_t longestPid = 11; // "-2147483648"
    // The names are the program's own: one that does not fit is a slip of ours.
    require(proc.size() + longestPid + 1 + name.size() < text_.size(),
            "process file name too long");
    char* end = std::copy(proc.begin(), proc.end(), text_.begin());
    end = std::to_chars(end, text_.data() + text_.size(), pid).ptr;
    *end++ = '/';
    end = std::copy(name.begin(), name.end(), end);
    length_ = static_cast<std::size_t>(end - text_.data());
}

KeptFile::~KeptFile() {
    close();
}

KeptFile::KeptFile(KeptFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

KeptFile& KeptFile::operator=(KeptFile&& other) noexcept {
    if (this != &other) {
        close();
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

std::optional<std::string_view> KeptFile::read(const ProcessFilePath& path, std::string& buffer,
                                               bool keep) {
    if (fd_ >= 0) {
        if (const auto whole = readOnePiece(fd_, buffer); whole && !whole->empty()) {
            return whole;
        }
        close();
    }
    fd_ = openForReading(path.c_str());
    const auto whole = fd_ >= 0 ? readOnePiece(fd_, buffer) : std::nullopt;
    if (!whole || !keep) {
        close();
    }
    return whole;
}

void KeptFile::close() {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

} // namespace loadwarden
