#include "app/control/limit_runner.h"

#include <pthread.h>
#include <pthread/qos.h>

namespace loadwarden {

void becomeLimitThread() {
    pthread_setname_np("Loadwarden CPU limit");
    pthread_set_qos_class_self_np(QOS_CLASS_USER_INTERACTIVE, 0);
}

} // namespace loadwarden
