#include "framework/instance.h"

TcFwInstance tcFwInstance;

void fw_setState(int32_t state) {
    __atomic_store_n(&tcFwInstance.state, state, __ATOMIC_RELEASE);
}

int32_t zk_test_finihsed(void) {
    return __atomic_load_n(&tcFwInstance.state, __ATOMIC_ACQUIRE) == FW_FINISHED;
}
