// How the platform ends a worker that outlives the shutdown time-out.
#pragma once

namespace AsyncTest {
// True when such a worker is left to finish its command (POSIX); false when it is terminated
// and the command never ends (Windows).
bool AbandonedWorkerFinishesItsCommand();
} // namespace AsyncTest
