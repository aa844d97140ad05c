#include "platform/Threads.h"

#include <pthread/qos.h>

namespace varno {

void lowerThreadPriority()
{
    pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

} // namespace varno
