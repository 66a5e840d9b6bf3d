#include "app/control/limit_runner.h"

#include <algorithm>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace loadwarden {

void becomeLimitThread() {
    // The kernel keeps 15 characters of a thread's name.
    pthread_setname_np(pthread_self(), "Loadwarden CPU ");
    // Real-time scheduling where the user's limits grant it, else the lowest
    // nice value they allow; an ordinary user usually gets neither and the
    // thread keeps the process's own priority.
    rlimit realtime{};
    if (getrlimit(RLIMIT_RTPRIO, &realtime) == 0 && realtime.rlim_cur > 0) {
        sched_param parameter{};
        parameter.sched_priority = static_cast<int>(
            std::min<rlim_t>(realtime.rlim_cur, sched_get_priority_max(SCHED_FIFO)));
        if (pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameter) == 0) {
            return;
        }
    }
    rlimit nice{};
    if (getrlimit(RLIMIT_NICE, &nice) == 0 && nice.rlim_cur != RLIM_INFINITY) {
        // RLIMIT_NICE of n allows a nice value down to 20 - n.
        const int lowest = 20 - static_cast<int>(std::min<rlim_t>(nice.rlim_cur, 40));
        const int tid = static_cast<int>(gettid());
        if (lowest < getpriority(PRIO_PROCESS, static_cast<id_t>(tid))) {
            setpriority(PRIO_PROCESS, static_cast<id_t>(tid), lowest);
        }
    }
}

} // namespace loadwarden
