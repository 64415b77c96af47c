#include "Util/UniqueIDGenerator.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <thread>
#include <vector>

using Util::UIDU;
using Util::UniqueIDGenerator;
using Util::UniqueIDIterator;

namespace {
int g_contextA, g_contextB;
void* const kContextA = &g_contextA;
void* const kContextB = &g_contextB;

std::vector<long> Drain(UniqueIDGenerator& g) {
    std::vector<long> ids;
    for (long id = g.Generate(); id != 0; id = g.Generate()) {
        ids.push_back(id);
    }
    return ids;
}
} // namespace

TEST(UniqueIDGeneratorRange, TheEndOfTheRangeIsNeverHandedOut) {
    UIDU universe;
    UniqueIDGenerator g(&universe, kContextA, 1, 4);
    ASSERT_TRUE(g.IsValid());
    EXPECT_EQ(Drain(g), (std::vector<long>{1, 2, 3}));
    EXPECT_EQ(g.Generate(), 0);

    UniqueIDGenerator negative(&universe, kContextB, -10, -7);
    ASSERT_TRUE(negative.IsValid());
    EXPECT_EQ(Drain(negative), (std::vector<long>{-10, -9, -8}));
}

TEST(UniqueIDGeneratorRange, RangesTouchingZeroOrEmptyMakeInvalidGenerators) {
    UIDU universe;
    const struct { long begin, end; } bad[] = {{-5, 5}, {0, 5}, {-5, 0}, {5, 5}, {5, 1}, {-1, -3}};
    for (const auto& r : bad) {
        UniqueIDGenerator g(&universe, kContextA, r.begin, r.end);
        EXPECT_FALSE(g.IsValid()) << r.begin << ", " << r.end;
        EXPECT_EQ(g.Generate(), 0);
        EXPECT_FALSE(g.Remove(r.begin));
    }
    EXPECT_EQ(universe.GetScopeCount(), 0u);
    UniqueIDGenerator orphan(nullptr, kContextA, 1, 10);
    EXPECT_FALSE(orphan.IsValid());
    EXPECT_EQ(orphan.Generate(), 0);
}

TEST(UniqueIDGeneratorReuse, OwnedIdentifiersWalkAscendingAndRemovedOnesComeBackSmallestFirst) {
    UIDU universe;
    UniqueIDGenerator g(&universe, kContextA, 1, 100);
    for (long expected = 1; expected <= 5; ++expected) {
        ASSERT_EQ(g.Generate(), expected);
    }
    EXPECT_TRUE(g.Remove(4));
    EXPECT_TRUE(g.Remove(2));
    EXPECT_FALSE(g.IsOwned(2));
    EXPECT_FALSE(g.Remove(2));  // not owned any more
    EXPECT_FALSE(g.Remove(50)); // never handed out
    std::vector<long> owned;
    for (UniqueIDIterator it = g.OwnedIDs(); !it.AtEnd(); ++it) {
        owned.push_back(*it);
    }
    EXPECT_EQ(owned, (std::vector<long>{1, 3, 5}));
    UniqueIDIterator it = g.OwnedIDs();
    EXPECT_EQ(*it++, 1);
    EXPECT_EQ(*it, 3);
    UniqueIDIterator none;
    EXPECT_TRUE(none.AtEnd());
    EXPECT_EQ(*none, 0);

    EXPECT_EQ(g.Generate(), 2);
    EXPECT_EQ(g.Generate(), 4);
    EXPECT_EQ(g.Generate(), 6);
    EXPECT_TRUE(g.IsOwned(2));
}

TEST(UniqueIDGeneratorSharing, GeneratorsOfOneContextNeverCollide) {
    UIDU universe;
    UniqueIDGenerator a(&universe, kContextA, 1, 1000);
    UniqueIDGenerator b(&universe, kContextA, 1, 1000);
    UniqueIDGenerator other(&universe, kContextB, 1, 1000);
    ASSERT_TRUE(a.IsValid() && b.IsValid() && other.IsValid());
    std::mt19937 rng(3);
    std::set<long> inUse;
    std::vector<UniqueIDGenerator*> sharing{&a, &b};
    for (int step = 0; step < 5000; ++step) {
        UniqueIDGenerator& g = *sharing[rng() % 2];
        if (rng() % 3 != 0) {
            long id = g.Generate();
            if (id != 0) {
                ASSERT_TRUE(inUse.insert(id).second) << id;
            }
        } else {
            UniqueIDIterator it = g.OwnedIDs();
            if (!it.AtEnd()) {
                long id = *it;
                ASSERT_TRUE(g.Remove(id));
                inUse.erase(id);
            }
        }
    }
    // Another context has its own scope, starting at the beginning of its range.
    EXPECT_EQ(other.Generate(), 1);

    UniqueIDGenerator mismatched(&universe, kContextA, 1, 999);
    EXPECT_FALSE(mismatched.IsValid());
    UniqueIDGenerator moved(&universe, kContextA, 2, 1000);
    EXPECT_FALSE(moved.IsValid());
}

TEST(UniqueIDGeneratorLifetime, DestroyedGeneratorsGiveTheirIdentifiersBack) {
    UIDU universe;
    UniqueIDGenerator keeper(&universe, kContextA, 1, 10);
    {
        UniqueIDGenerator temporary(&universe, kContextA, 1, 10);
        EXPECT_EQ(temporary.Generate(), 1);
        EXPECT_EQ(temporary.Generate(), 2);
        EXPECT_EQ(keeper.Generate(), 3);
    }
    EXPECT_EQ(keeper.Generate(), 1);
    EXPECT_EQ(keeper.Generate(), 2);
    EXPECT_EQ(keeper.Generate(), 4);

    // The scope leaves with its last owner, so the context can take another range.
    {
        UniqueIDGenerator only(&universe, kContextB, 100, 200);
        EXPECT_TRUE(only.IsValid());
        EXPECT_TRUE(universe.HasScope(kContextB));
    }
    EXPECT_FALSE(universe.HasScope(kContextB));
    UniqueIDGenerator fresh(&universe, kContextB, 500, 600);
    EXPECT_TRUE(fresh.IsValid());
    EXPECT_EQ(fresh.Generate(), 500);
}

TEST(UniqueIDGeneratorLifetime, CopiesJoinTheScopeWithoutIdentifiers) {
    UIDU universe;
    auto original = std::make_unique<UniqueIDGenerator>(&universe, kContextA, 1, 10);
    EXPECT_EQ(original->Generate(), 1);
    UniqueIDGenerator copy(*original);
    ASSERT_TRUE(copy.IsValid());
    EXPECT_TRUE(copy.OwnedIDs().AtEnd());
    EXPECT_FALSE(copy.Remove(1));
    EXPECT_EQ(copy.Generate(), 2);
    original.reset(); // returns 1, once
    EXPECT_EQ(copy.Generate(), 1);
    EXPECT_EQ(copy.Generate(), 3);

    UniqueIDGenerator elsewhere(&universe, kContextB, 20, 30);
    EXPECT_EQ(elsewhere.Generate(), 20);
    elsewhere = copy; // gives 20 back and joins context A
    EXPECT_FALSE(universe.HasScope(kContextB));
    EXPECT_EQ(elsewhere.GetContext(), kContextA);
    EXPECT_EQ(elsewhere.Generate(), 4);
}

TEST(UniqueIDGeneratorThreads, GeneratorsOnSeveralThreadsShareOneScopeSafely) {
    UIDU universe;
    const int kThreads = 4;
    std::vector<std::unique_ptr<UniqueIDGenerator>> generators;
    for (int t = 0; t < kThreads; ++t) {
        generators.push_back(std::make_unique<UniqueIDGenerator>(&universe, kContextA, 1, 100000));
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&generators, t] {
            std::mt19937 rng(static_cast<unsigned>(t));
            UniqueIDGenerator& g = *generators[static_cast<size_t>(t)];
            for (int i = 0; i < 3000; ++i) {
                long id = g.Generate();
                if (id != 0 && rng() % 2 == 0) {
                    g.Remove(id);
                }
            }
        });
    }
    for (auto& th : threads) {
        th.join();
    }
    std::set<long> all;
    size_t total = 0;
    for (auto& g : generators) {
        for (UniqueIDIterator it = g->OwnedIDs(); !it.AtEnd(); ++it) {
            all.insert(*it);
            ++total;
        }
    }
    EXPECT_EQ(all.size(), total);
    EXPECT_GT(total, 0u);
}

// ---- what the generators report through the operations manager ----

namespace {
class UniqueIDGeneratorReporting : public OpsTest::OpsRunning {};
} // namespace

TEST_F(UniqueIDGeneratorReporting, EveryFailedPreconditionIsAVerification) {
    auto verify = OpsTest::Subscribe("EVENT_TYPE_FILTER", "type", "VERIFY");
    UIDU universe;
    UniqueIDGenerator straddling(&universe, kContextA, -5, 5);
    straddling.Generate();
    UniqueIDGenerator orphan(nullptr, kContextA, 3, 2);
    UniqueIDGenerator first(&universe, kContextB, 1, 10);
    UniqueIDGenerator second(&universe, kContextB, 2, 11);
    first.Remove(7);

    std::vector<std::string> texts;
    for (const auto& e : verify->Events()) {
        texts.push_back(e.text);
    }
    const std::vector<std::string> expected = {
        "((beginRange > 0 && endRange > 0) || (beginRange < 0 && endRange < 0)) is false",
        "(this->IsValid()) is false",
        "(m_pUniverse != 0) is false",
        "(endRange > beginRange) is false",
        "(pScope->GetBeginRange() == beginRange) is false",
        "(pScope->GetEndRange() == endRange) is false",
        "(this->IsOwned(id)) is false",
    };
    EXPECT_EQ(texts, expected);
}
