// The statistics lines of the block string cache and its free list, written once for both
// destinations: formatted into a list of texts, or written as "DUMP" events.
#pragma once

#include "DataTypes/src/valuesreporting.h"
#include "Util/BlockStringCache.h"

#include <vector>

namespace Util {
namespace ValuesStatistics {

struct FormatLines {
    std::vector<TString>& lines;
    template <class... Args> void operator()(const char* format, Args... args) {
        TString line;
        line.Format(format, args...);
        lines.push_back(line);
    }
};

// Each line as a "DUMP" event of the named function.
struct DumpLines {
    const char* function;
    const char* signature;
    template <class... Args> void operator()(const char* format, Args... args) {
        VALUES_DUMP(function, signature, format, args...);
    }
};

template <class Sink> void EmitFreeList(const FreeList& list, bool detail, Sink& sink) {
    sink("%ld free buffer(s)", static_cast<long>(list.GetCount()));
    if (detail) {
        list.ForEach([&sink](char* start, std::size_t size) {
            auto first = reinterpret_cast<std::uintptr_t>(start);
            sink("free buffer size: %u\t\tstart: %#lx\tend: %#lx", static_cast<unsigned>(size),
                 static_cast<unsigned long>(first), static_cast<unsigned long>(first + size));
        });
    }
    sink("%lu total free space", static_cast<unsigned long>(list.GetTotalFree()));
}

template <class Sink> void EmitCache(const BlockStringCache& cache, bool detail, Sink& sink) {
    sink("%ld block(s) of size %u bytes allocated, %lu bytes total allocation",
         static_cast<long>(cache.GetBlockCount()), cache.GetBlockSize(),
         static_cast<unsigned long>(cache.GetBlockCount()) * cache.GetBlockSize());
    sink("AddString called %lu times with non-empty string", cache.GetAddCount());
    sink("AddString called %lu times with an empty string", cache.GetEmptyAddCount());
    sink("ReplaceString called %lu times", cache.GetReplaceCount());
    sink("RemoveString called %lu times", cache.GetRemoveCount());
    if (cache.GetFreeList() != nullptr) {
        EmitFreeList(*cache.GetFreeList(), detail, sink);
    }
}

} // namespace ValuesStatistics
} // namespace Util
