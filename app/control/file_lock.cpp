#include "app/control/file_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

namespace loadwarden {

FileLock::FileLock(const std::string& path) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd_ < 0) {
        return;
    }
    while (flock(fd_, LOCK_EX) != 0) {
        if (errno != EINTR) {
            ::close(fd_);
            fd_ = -1;
            return;
        }
    }
}

FileLock::~FileLock() {
    if (fd_ >= 0) {
        ::close(fd_); // closing the only descriptor releases the lock
    }
}

} // namespace loadwarden
