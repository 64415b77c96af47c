#include <unistd.h>

#include "tests/OperationsManager/ops_test_platform.h"

namespace OpsTest {

unsigned long ProcessId() {
    return static_cast<unsigned long>(::getpid());
}

} // namespace OpsTest
