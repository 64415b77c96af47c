#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "Util/MemoryManager.h"

namespace {

TEST(MemoryManager, OneProcessWideObjectAllocatesUsableAlignedBlocksAndCountsThem) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    EXPECT_EQ(&memory, &Util::GetMemoryManager());
    const std::size_t before = memory.GetOutstandingBlocks();
    void* zero = memory.Allocate(0);
    void* other = memory.Allocate(0);
    ASSERT_NE(zero, nullptr);
    EXPECT_NE(zero, other);
    auto* block = static_cast<unsigned char*>(memory.Allocate(4096));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
    std::memset(block, 0xAB, 4096);
    EXPECT_EQ(memory.GetOutstandingBlocks(), before + 3);
    memory.Free(block);
    memory.Free(zero);
    memory.Free(other);
    memory.Free(nullptr);
    EXPECT_EQ(memory.GetOutstandingBlocks(), before);
}

TEST(MemoryManager, ServesManyThreadsAtOnce) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    const std::size_t before = memory.GetOutstandingBlocks();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&memory, t] {
            std::vector<void*> blocks;
            for (int i = 0; i < 2000; ++i) {
                void* p = memory.Allocate(static_cast<std::size_t>(1 + (i * 7 + t) % 300));
                std::memset(p, t, 1);
                blocks.push_back(p);
                if (i % 3 == 0) {
                    memory.Free(blocks.back());
                    blocks.pop_back();
                }
            }
            for (void* p : blocks)
                memory.Free(p);
        });
    }
    for (std::thread& th : threads)
        th.join();
    EXPECT_EQ(memory.GetOutstandingBlocks(), before);
}

} // namespace
