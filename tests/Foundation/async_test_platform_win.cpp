#include "tests/Foundation/async_test_platform.h"

bool AsyncTest::AbandonedWorkerFinishesItsCommand() {
    return false;
}
