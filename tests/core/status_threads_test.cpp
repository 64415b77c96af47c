#include "Util/Status.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using Util::Status;

// Eight threads share a set of published statuses (and the predefined ones), copy them,
// change the copies, read messages, create and drop their own. Run under the tsan preset this
// checks the pool, copy on write and lazy message expansion for data races.
TEST(StatusThreads, EightThreadsCreateCopyChangeReadAndDrop) {
    std::vector<Status> published;
    for (int i = 0; i < 16; ++i) {
        Status s(-1000 - i, "Published %Index% of %Total%");
        s.SetAttribute("Index", static_cast<long>(i));
        s.SetAttribute("Total", 16L);
        published.push_back(s);
    }
    std::atomic<int> failures{0};
    auto worker = [&](int id) {
        for (int round = 0; round < 4000; ++round) {
            const Status& shared = published[(id + round) % published.size()];
            Status copy = shared;
            std::string expected = "Published " + std::to_string((id + round) % 16) + " of 16";
            if (std::string(copy.GetStatusMessage().c_str()) != expected)
                ++failures;
            copy.SetAttribute("Thread", static_cast<long>(id));
            if (copy.GetStatusCode() != shared.GetStatusCode() || copy.AttributeExists("Index"))
                ++failures;

            Status own(-id, "Thread %Thread% round %Round%");
            own.SetAttribute("Thread", static_cast<long>(id));
            own.SetAttribute("Round", static_cast<long>(round));
            std::string ownText =
                "Thread " + std::to_string(id) + " round " + std::to_string(round);
            if (std::string(own.GetStatusMessage().c_str()) != ownText)
                ++failures;

            Status failed = Status::GetFailed();
            if (std::string(failed.GetStatusMessage().c_str()) != "Failed")
                ++failures;
            failed.SetStatusCode(-2);
            if (Status::GetFailed().GetStatusCode() != -1)
                ++failures;

            std::vector<Status> burst(round % 8, own);
            for (auto& b : burst)
                b.SetFormatStr("burst");
        }
    };
    std::vector<std::thread> threads;
    for (int id = 0; id < 8; ++id)
        threads.emplace_back(worker, id);
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(failures.load(), 0);
    // Live statuses never exceed a few per thread, so the pool stays small.
    EXPECT_LT(Util::GetStatusPool()->GetPoolSize(), 2000);
}

// Two threads drop the last two handles of one status at the same moment, over and over. Both
// may see the other's handle still alive; whichever drops last must hand the implementation
// back to the pool rather than lose it, so the pool does not grow.
TEST(StatusThreads, SimultaneousLastDropsReturnTheEntry) {
    constexpr int kRounds = 20000;
    std::atomic<int> ready{0};
    std::atomic<int> round{0};
    Status slots[2] = {Status::GetSucceeded(), Status::GetSucceeded()};
    const void* entry = nullptr;
    int movedEntry = 0;
    auto dropper = [&](int id) {
        for (int r = 1; r <= kRounds; ++r) {
            // Spin before yielding, so that both droppers tend to leave the wait together.
            for (int spin = 0; round.load(std::memory_order_acquire) < r; ++spin) {
                if (spin > 2000)
                    std::this_thread::yield();
            }
            slots[id] = Status::GetSucceeded();
            ready.fetch_add(1, std::memory_order_acq_rel);
        }
    };
    std::thread a(dropper, 0);
    std::thread b(dropper, 1);
    int failures = 0;
    for (int r = 1; r <= kRounds; ++r) {
        Status s(-r, "round %Round%");
        s.SetAttribute("Round", static_cast<long>(r));
        // Each round's entry was handed back at the end of the round before, and it is the
        // first free one, so every round takes the same entry.
        if (entry == nullptr)
            entry = &s.GetFormatStr();
        else if (entry != &s.GetFormatStr())
            ++movedEntry;
        slots[0] = s;
        slots[1] = s;
        s = Status::GetSucceeded();
        round.store(r, std::memory_order_release);
        while (ready.load(std::memory_order_acquire) < 2 * r)
            std::this_thread::yield();
    }
    a.join();
    b.join();
    for (int i = 0; i < 8; ++i) {
        Status check(-i, "check %N%");
        check.SetAttribute("N", static_cast<long>(i));
        if (std::string(check.GetStatusMessage().c_str()) != "check " + std::to_string(i))
            ++failures;
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(movedEntry, 0);
}
