#include <windows.h>

#include "tests/OperationsManager/ops_test_platform.h"

namespace OpsTest {

unsigned long ProcessId() {
    return ::GetCurrentProcessId();
}

} // namespace OpsTest
