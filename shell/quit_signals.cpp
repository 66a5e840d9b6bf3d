#include "shell/quit_signals.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace loadwarden {

namespace {

// A handler may only do what is safe inside a signal: it writes one byte
// to a pipe that wait() watches.
int pipeEnds[2] = {-1, -1};

void noteSignal(int) {
    const int saved = errno;
    const char byte = 1;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
    errno = saved;
}

} // namespace

QuitSignals::QuitSignals() {
    if (pipe(pipeEnds) != 0) {
        return; // the signals keep their default and end the program
    }
    for (const int end : pipeEnds) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    struct sigaction action {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    for (const int quit : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(quit, &action, nullptr);
    }
}

int QuitSignals::descriptor() const {
    return pipeEnds[0];
}

bool QuitSignals::wait(Seconds seconds) {
    pollfd watched{.fd = pipeEnds[0], .events = POLLIN, .revents = 0};
    const int milliseconds = static_cast<int>(std::clamp(seconds, 0.0, 3600.0) * 1000.0);
    int ready = 0;
    do {
        ready = poll(&watched, 1, milliseconds); // our own handler interrupts it too
    } while (ready < 0 && errno == EINTR);
    if (ready <= 0) {
        return false;
    }
    char byte = 0;
    while (read(pipeEnds[0], &byte, 1) == 1) {
    }
    return true;
}

} // namespace loadwarden
