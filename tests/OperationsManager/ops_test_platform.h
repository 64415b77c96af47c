// What the operations-manager tests ask of the platform (ops_test_platform_posix.cpp / _win.cpp).
#pragma once

namespace OpsTest {

// The test process's id, as log lines show it.
unsigned long ProcessId();
// The calling thread's id, as log lines show it.
unsigned long ThreadId();

} // namespace OpsTest
