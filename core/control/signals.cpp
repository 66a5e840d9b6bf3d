#include "core/control/signals.h"

#include <cerrno>
#include <csignal>

namespace loadwarden::Signals {

namespace {

Outcomes sendEach(int signal, const std::vector<std::int32_t>& pids) {
    Outcomes outcomes;
    for (const std::int32_t pid : pids) {
        outcomes.insert_or_assign(pid, send(signal, pid));
    }
    return outcomes;
}

} // namespace

Outcome send(int signal, std::int32_t pid) {
    if (pid < 2) {
        return {.kind = Outcome::Kind::notPermitted};
    }
    if (::kill(pid, signal) == 0) {
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

Outcomes pause(const std::vector<std::int32_t>& pids) {
    return sendEach(SIGSTOP, pids);
}

Outcomes resume(const std::vector<std::int32_t>& pids) {
    return sendEach(SIGCONT, pids);
}

Outcomes terminate(const std::vector<std::int32_t>& pids) {
    return sendEach(SIGTERM, pids);
}

Outcomes kill(const std::vector<std::int32_t>& pids) {
    return sendEach(SIGKILL, pids);
}

} // namespace loadwarden::Signals
