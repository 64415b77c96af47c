#include <windows.h>

#include "tests/OperationsManager/ops_test_platform.h"

namespace OpsTest {

unsigned long ProcessId() {
    return ::GetCurrentProcessId();
}

unsigned long ThreadId() {
    return ::GetCurrentThreadId();
}

} // namespace OpsTest
