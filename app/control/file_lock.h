#pragma once

#include <string>

namespace loadwarden {

// An exclusive lock on a file, held from construction to destruction and
// shared by every process that locks the same path. The system releases it
// when its holder dies, however it dies.
class FileLock {
public:
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // False when the lock file could not be opened; nothing is locked then.
    bool held() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

} // namespace loadwarden
