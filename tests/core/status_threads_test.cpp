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
