#include "platform/fork.h"

#include <pthread.h>

namespace zt {

void CallInForkedProcesses(void (*function)()) { pthread_atfork(nullptr, nullptr, function); }

}  // namespace zt
