#include <sys/syscall.h>
#include <unistd.h>

#include "tests/OperationsManager/ops_test_platform.h"

namespace OpsTest {

unsigned long ProcessId() {
    return static_cast<unsigned long>(::getpid());
}

unsigned long ThreadId() {
    return static_cast<unsigned long>(::syscall(SYS_gettid));
}

} // namespace OpsTest
