#include "Util/MemoryManager.h"

#include <atomic>
#include <cstdlib>

namespace Util {
namespace {

// The C heap is already thread-safe; the manager only adds a relaxed count of live blocks, so
// it never takes a lock of its own.
class HeapMemoryManager final : public IMemoryManager {
public:
    void* Allocate(std::size_t bytes) override {
        if (Detail::ShouldFailAllocation())
            return nullptr;
        void* block = std::malloc(bytes == 0 ? 1 : bytes);
        if (block != nullptr)
            m_outstanding.fetch_add(1, std::memory_order_relaxed);
        return block;
    }

    void Free(void* block) override {
        if (block == nullptr)
            return;
        std::free(block);
        m_outstanding.fetch_sub(1, std::memory_order_relaxed);
    }

    std::size_t GetOutstandingBlocks() const override {
        return m_outstanding.load(std::memory_order_relaxed);
    }

private:
    std::atomic<std::size_t> m_outstanding{0};
};

} // namespace

IMemoryManager& GetMemoryManager() {
    // Never destroyed: values with static storage may free their strings during process exit,
    // after a function-local static would already be gone.
    static HeapMemoryManager* manager = new HeapMemoryManager();
    return *manager;
}

} // namespace Util
