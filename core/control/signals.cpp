#include "core/control/signals.h"

#include <cerrno>
#include <csignal>
#ifdef __linux__
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace loadwarden::Signals {

namespace {

// What the call that returned `result` did, from errno when it failed.
Outcome outcomeOf(long result) {
    if (result == 0) {
        return {.kind = Outcome::Kind::done};
    }
    switch (errno) {
    case EPERM:
        return {.kind = Outcome::Kind::notPermitted};
    case ESRCH:
        return {.kind = Outcome::Kind::gone};
    default:
        return {.kind = Outcome::Kind::failed, .error = errno};
    }
}

} // namespace

Outcome send(int signal, std::int32_t pid) {
    if (pid < 2) {
        return {.kind = Outcome::Kind::notPermitted};
    }
    return outcomeOf(::kill(pid, signal));
}

Outcome sendThrough(int signal, int processDescriptor, std::int32_t pid) {
    if (pid < 2) {
        return {.kind = Outcome::Kind::notPermitted};
    }
#ifdef __linux__
    return outcomeOf(syscall(SYS_pidfd_send_signal, processDescriptor, signal, nullptr, 0));
#else
    (void)signal;
    (void)processDescriptor;
    return {.kind = Outcome::Kind::failed, .error = ENOSYS};
#endif
}

} // namespace loadwarden::Signals
