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

} // namespace Util
