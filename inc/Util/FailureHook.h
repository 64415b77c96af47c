// Util::FailureHook: makes chosen resource acquisitions of the library fail on purpose, so that
// the reports of failures a healthy system never shows (an event object that cannot be created,
// a singleton that cannot be allocated) can be exercised and checked.
//
// Contract: FailNext(point, count) makes the next `count` acquisitions at that point fail as the
// system call or allocation would fail (count 0 clears it); each failure uses up one. The
// points are checked where the library acquires the resource, with one relaxed atomic read, so
// an unarmed hook costs nothing worth measuring. Safe from any thread. The singletons are made
// once per process, so their points only matter before the first use (a fresh test process).
#pragma once

#include "Util/Export.h"

namespace Util {

class ZTUTIL_API FailureHook {
public:
    enum Point {
        kCreateEvent,               // the completion event of an AsynchronousOperation
        kPerformanceInfoInstance,   // PerformanceInfo::instance's allocation
        kPerformanceInfoHPInstance, // PerformanceInfoHP::instance's allocation
        kPointCount
    };

    static void FailNext(Point point, int count = 1);
    // True (using up one failure) when the acquisition at `point` is to fail.
    static bool Fails(Point point);
};

} // namespace Util
