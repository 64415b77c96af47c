// Util::IMemoryManager and Util::GetMemoryManager(): the process-wide allocator through which the
// library's value types (Util::Variant's strings, for one) obtain and release their memory.
//
// Contract: Allocate returns a block of at least the requested size, aligned for any fundamental
// type, or null when the system has no memory left; a request for 0 bytes still yields a distinct
// block. Free releases a block obtained from Allocate of the same manager; Free(nullptr) does
// nothing. Both may be called from any thread at any time. The manager lives until the library
// is unloaded, so the reference GetMemoryManager() returns never dangles.
#pragma once

#include <cstddef>

#include "Util/Export.h"

namespace Util {

class ZTUTIL_API IMemoryManager {
public:
    virtual ~IMemoryManager() = default;

    virtual void* Allocate(std::size_t bytes) = 0;
    virtual void Free(void* block) = 0;

    // Blocks handed out and not yet freed; lets callers and tests check that they give back what
    // they take.
    virtual std::size_t GetOutstandingBlocks() const = 0;
};

ZTUTIL_API IMemoryManager& GetMemoryManager();

// Test hook, not for applications: allocation-failure injection. After
// SetAllocationFailureCountdown(n), the nth allocation from then on fails as if the system had
// no memory left, once; 0 switches the injection off (the state at start). The allocation points
// that count are the memory manager's Allocate, new entries of the status pool, the texts of
// expression values, the expression parser's nodes, the blocks of a BlockStringCache, the
// buffers of a Base64Coder and the XML documents of the settings repositories and subscription
// files (the library's own copy of pugixml allocates through the memory manager). Each fails in
// its documented way: a null block, std::bad_alloc from a status that cannot get a pool entry,
// PNS_OUT_OF_MEMORY from a parse or an evaluation, AllocFailed from the string cache, an empty
// Base64 result, a failed settings request (E_FAIL, Win32 error 8) that leaves the repository
// file as it was, a subscription file status of code -7. AllocationFailureInjected tells
// whether the countdown has fired since it was last set. The countdown is process-wide: tests
// that use it run one thread at a time.
ZTUTIL_API void SetAllocationFailureCountdown(std::size_t n);
ZTUTIL_API bool AllocationFailureInjected();

namespace Detail {
// Called by the allocation points above: true when this allocation is the one to fail.
ZTUTIL_API bool ShouldFailAllocation();
} // namespace Detail

} // namespace Util
