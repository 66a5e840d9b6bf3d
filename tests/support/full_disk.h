#pragma once

#include <csignal>
#include <sys/resource.h>

namespace loadwarden::support {

// While it lasts, files this process writes stop growing past `room` bytes,
// as on a full disk: a write past it fails (EFBIG) instead of raising SIGXFSZ.
class FullDisk {
public:
    explicit FullDisk(rlim_t room) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit full = before_;
        full.rlim_cur = room;
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

} // namespace loadwarden::support
