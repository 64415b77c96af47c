#include "Util/Exception.h"
#include "Util/Status.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Util::Status;

namespace {

std::string Message(const Status& s) {
    return s.GetStatusMessage().c_str();
}

} // namespace

TEST(StatusPredefined, CodesTextsAndSuccess) {
    struct Row {
        const Status& status;
        long code;
        const char* text;
    };
    const Row rows[] = {
        {Status::GetSucceeded(), 0, "Succeeded"},
        {Status::GetNoValue(), 1, "Succeeded, No Value"},
        {Status::GetResultPending(), 2, "Succeeded, Result Pending"},
        {Status::GetNotUsed(), 3, "Succeeded, Supplied data not used"},
        {Status::GetFailed(), -1, "Failed"},
        {Status::GetUnknown(), -2, "Unknown Error"},
        {Status::GetInvalidArg(), -3, "Invalid Argument"},
        {Status::GetNullPtrArg(), -4, "Invalid Argument: Null Pointer"},
        {Status::GetNotImplemented(), -5, "Not Implemented"},
        {Status::GetComError(), -6, "COM Error"},
        {Status::GetAllocFailed(), -7, "Memory failure"},
        {Status::GetNotFound(), -8, "Not found"},
        {Status::GetLimitExceeded(), -9, "Limit exceeded"},
        {Status::GetStatusNotSet(), -10, "Status has not yet been set"},
        {Status::GetSystemConfigError(), -11, "System Configuration Error"},
        {Status::GetSystemAccessDenied(), -12, "System Error: Access Denied"},
        {Status::GetOutOfMemory(), -13, "Insufficient Memory"},
        {Status::GetSyntaxError(), -14, "Syntax Error"},
        {Status::GetIncomplete(), -15, "Incomplete Operation"},
        {Status::GetNotInitialized(), -16, "Not Initialized"},
        {Status::GetUserCancelledAction(), -17, "The user cancelled the action."},
        {Status::GetStatusPrimaryKeyValueRef(), -18,
         "Primary key for row in parent table is referenced by foreign key in some other table."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.status.GetStatusCode(), row.code);
        EXPECT_EQ(Message(row.status), row.text);
        EXPECT_EQ(row.status.Succeeded(), row.code >= 0);
        EXPECT_EQ(row.status.Failed(), row.code < 0);
        // The pool's reference plus the process-wide constant.
        EXPECT_GE(row.status.GetUseCount(), 2);
    }
}

TEST(StatusConstruction, DefaultIsSucceededAndCodeDecidesSuccess) {
    Status def;
    EXPECT_TRUE(def.Succeeded());
    EXPECT_EQ(def.GetStatusCode(), 0);
    EXPECT_EQ(Message(def), "Succeeded");
    EXPECT_TRUE(Status(-8, "Not found").Failed());
    for (long code : {1L, 2L, 3L, 2017L})
        EXPECT_TRUE(Status(code, "x").Succeeded()) << code;
}

TEST(StatusCode, ComponentOffsetTruncatesMagnitudeToThousands) {
    const std::pair<long, long> rows[] = {{-1999, 1000}, {999, 0},     {-1000, 1000},
                                          {-2017, 2000}, {2017, 2000}, {0, 0},
                                          {-18, 0},      {-1, 0},      {-2147483647, 2147483000}};
    for (const auto& [code, offset] : rows)
        EXPECT_EQ(Status(code, "").GetStatusCodeComponentOffset(), offset) << code;
}

TEST(StatusMessage, ExpandsAttributesBetweenPercentSigns) {
    struct Row {
        const char* format;
        std::vector<std::pair<const char*, const char*>> attributes;
        const char* expected;
    };
    const Row rows[] = {
        {"Cannot open %FileName%", {{"FileName", "a.dat"}}, "Cannot open a.dat"},
        {"Cannot open %FileName%", {}, "Cannot open FileName"},
        {"%A%%B%", {{"A", "1"}}, "1B"},
        {"%%", {}, ""},
        {"", {}, ""},
        {"no attributes here", {{"here", "x"}}, "no attributes here"},
        {"%%%A%%%", {{"A", "v"}}, "v"},
        {"%A% and %A%", {{"A", "x"}, {" and ", "!"}}, "x!x"},
        {"%Empty%", {{"Empty", ""}}, "Empty"},
    };
    for (const auto& row : rows) {
        Status s(-1, row.format);
        for (const auto& [name, value] : row.attributes)
            s.SetAttribute(name, value);
        EXPECT_EQ(Message(s), row.expected) << row.format;
    }
}

TEST(StatusMessage, NumbersAndBoolsShowAsText) {
    Status s(-1, "%Count% items, ok=%Ok%, err %Win32Error%");
    s.SetAttribute("Count", 42L);
    s.SetAttribute("Ok", false);
    s.SetAttribute("Win32Error", -5);
    EXPECT_EQ(Message(s), "42 items, ok=false, err -5");
}

TEST(StatusMessage, CacheIsDroppedWhenFormatOrAttributeChanges) {
    Status s(-1, "File %F%");
    EXPECT_EQ(Message(s), "File F");
    s.SetAttribute("F", "x");
    EXPECT_EQ(Message(s), "File x");
    s.SetFormatStr("Path %F%");
    EXPECT_EQ(Message(s), "Path x");
    s.ClearAttribute("F");
    EXPECT_EQ(Message(s), "Path F");
}

TEST(StatusCopyOnWrite, ChangingACopyOfAPredefinedStatusLeavesItAlone) {
    Status copy = Status::GetNotFound();
    copy.SetAttribute("Key", "k1");
    EXPECT_EQ(Status::GetNotFound().GetStatusCode(), -8);
    EXPECT_FALSE(Status::GetNotFound().AttributeExists("Key"));
    EXPECT_EQ(copy.GetStatusCode(), -8);
    EXPECT_EQ(Message(copy), "Not found");
    EXPECT_TRUE(copy.AttributeExists("Key"));
}

TEST(StatusCopyOnWrite, DetachedCopyLosesAttributesButKeepsCachedMessage) {
    Status original(-5, "Value %V%");
    original.SetAttribute("V", "7");
    EXPECT_EQ(Message(original), "Value 7");
    Status copy = original;
    copy.SetStatusCode(-6);
    EXPECT_FALSE(copy.AttributeExists("V"));
    EXPECT_EQ(Message(copy), "Value 7");
    EXPECT_EQ(copy.GetStatusCode(), -6);
    EXPECT_EQ(original.GetStatusCode(), -5);
    EXPECT_TRUE(original.AttributeExists("V"));

    // Without a read before the copy, the copy expands its own, attribute-less message.
    Status unread(-5, "Value %V%");
    unread.SetAttribute("V", "7");
    Status copy2 = unread;
    copy2.SetStatusCode(-6);
    EXPECT_EQ(Message(copy2), "Value V");
}

TEST(StatusCopyOnWrite, SoleOwnerChangesInPlace) {
    Status s(-1, "x");
    s.SetAttribute("A", 1);
    s.SetStatusCode(-2);
    EXPECT_TRUE(s.AttributeExists("A"));
}

TEST(StatusAttributes, TypedReadsAndWrongTypeThrows) {
    Status s(-1, "");
    s.SetAttribute("L", 5L);
    s.SetAttribute("D", 2.5);
    s.SetAttribute("B", true);
    long l = 0;
    double d = 0;
    bool b = false;
    EXPECT_TRUE(s.GetLongAttribute("L", l));
    EXPECT_EQ(l, 5);
    EXPECT_TRUE(s.GetDoubleAttribute("D", d));
    EXPECT_EQ(d, 2.5);
    EXPECT_TRUE(s.GetBoolAttribute("B", b));
    EXPECT_TRUE(b);
    EXPECT_FALSE(s.GetLongAttribute("missing", l));
    EXPECT_THROW(s.GetLongAttribute("D", l), boost::bad_any_cast);
    Util::TString text;
    EXPECT_TRUE(s.GetStringAttribute("L", text));
    EXPECT_STREQ(text.c_str(), "5");
    s.ClearAttributes();
    EXPECT_FALSE(s.AttributeExists("L"));
}

TEST(StatusPool, ReusesImplementationsOnceDropped) {
    auto* pool = Util::GetStatusPool();
    for (int i = 0; i < 100; ++i)
        Status s(-1, "loop");
    int size = pool->GetPoolSize();
    for (int pass = 0; pass < 3; ++pass) {
        std::vector<Status> batch;
        for (int i = 0; i < 100; ++i)
            batch.emplace_back(-1, "batch");
    }
    int afterFirst = pool->GetPoolSize();
    for (int pass = 0; pass < 3; ++pass) {
        std::vector<Status> batch;
        for (int i = 0; i < 100; ++i)
            batch.emplace_back(-1, "batch");
        EXPECT_EQ(pool->GetPoolSize(), afterFirst);
    }
    EXPECT_GE(afterFirst, size);
}

namespace {

// The format lives inside the implementation, so its address identifies the pool entry.
const void* EntryOf(const Status& s) {
    return &s.GetFormatStr();
}

// Holds statuses until the pool has to grow: afterwards no earlier entry is free.
std::vector<Status> DrainPool() {
    auto* pool = Util::GetStatusPool();
    std::vector<Status> drained;
    drained.reserve(1 << 16);
    int size = pool->GetPoolSize();
    while (pool->GetPoolSize() == size)
        drained.emplace_back(-1, "drain");
    return drained;
}

} // namespace

TEST(StatusPool, HandsOutTheFirstFreeEntryFromTheFront) {
    std::vector<Status> drained = DrainPool();
    std::vector<Status> ten;
    for (int i = 0; i < 10; ++i)
        ten.emplace_back(-1, "entry");
    const void* third = EntryOf(ten[3]);
    const void* sixth = EntryOf(ten[6]);
    ten[6] = Status::GetSucceeded();
    ten[3] = Status::GetSucceeded();
    Status first(-1, "first");
    Status second(-1, "second");
    EXPECT_EQ(EntryOf(first), third);
    EXPECT_EQ(EntryOf(second), sixth);
}

// A bare reference from GetNewStatus frees its entry when its last copy drops, so the next
// request takes that entry again instead of growing the pool, and the front-first order holds
// across bare references and statuses.
TEST(StatusPool, BareReferencesAreReusedWhenDropped) {
    std::vector<Status> drained = DrainPool();
    auto* pool = Util::GetStatusPool();
    const int size = pool->GetPoolSize();
    const void* entry = nullptr;
    for (int i = 0; i < 3000; ++i) {
        auto bare = pool->GetNewStatus();
        auto copy = bare;
        if (entry == nullptr)
            entry = &bare->GetFormatStr();
        EXPECT_EQ(&bare->GetFormatStr(), entry);
    }
    EXPECT_EQ(pool->GetPoolSize(), size + 1);

    auto low = pool->GetNewStatus();
    Status high(-1, "high");
    const void* lowEntry = &low->GetFormatStr();
    low.reset();
    Status next(-1, "next");
    EXPECT_EQ(EntryOf(next), lowEntry);
    EXPECT_EQ(next.GetUseCount(), 2);
}

TEST(StatusPool, ReusedImplementationIsReset) {
    std::vector<Status> drained = DrainPool();
    const void* entry = nullptr;
    {
        Status s(-4, "Marked %Mark%");
        s.SetAttribute("Mark", "a");
        EXPECT_EQ(Message(s), "Marked a");
        entry = EntryOf(s);
    }
    auto impl = Util::GetStatusPool()->GetNewStatus();
    EXPECT_EQ(&impl->GetFormatStr(), entry);
    EXPECT_EQ(impl->GetStatusCode(), 0);
    EXPECT_FALSE(impl->AttributeExists("Mark"));
    EXPECT_TRUE(impl->GetFormatStr().IsEmpty());
    EXPECT_TRUE(impl->GetStatusMessage().IsEmpty());
}

// A status built on a recycled entry shows nothing of the entry's previous life, whether the
// old format was longer or shorter, had attributes, or had an expanded message.
TEST(StatusPool, RecycledEntryShowsOnlyItsNewContent) {
    std::vector<Status> drained = DrainPool();
    struct Case {
        const char* oldFormat;
        const char* newFormat;
        const char* expected;
    } cases[] = {
        {"A long earlier format that needed its own storage %Mark%", "Short", "Short"},
        {"Short %Mark%", "A longer new format %Mark% without the attribute",
         "A longer new format Mark without the attribute"},
        {"Same %Mark%", "Same %Mark%", "Same Mark"},
    };
    for (const Case& c : cases) {
        const void* entry = nullptr;
        {
            Status old(-4, c.oldFormat);
            old.SetAttribute("Mark", "set");
            EXPECT_NE(Message(old).find("set"), std::string::npos);
            entry = EntryOf(old);
        }
        Status fresh(7, c.newFormat);
        EXPECT_EQ(EntryOf(fresh), entry);
        EXPECT_EQ(fresh.GetStatusCode(), 7);
        EXPECT_FALSE(fresh.AttributeExists("Mark"));
        EXPECT_EQ(Message(fresh), c.expected) << c.oldFormat;
    }
}

// The counts seen from outside are those of a pool that always holds its own reference.
TEST(StatusPool, UseCountsIncludeThePoolsReference) {
    Status s(-1, "counted");
    EXPECT_EQ(s.GetUseCount(), 2);
    {
        Status copy = s;
        EXPECT_EQ(s.GetUseCount(), 3);
        Status another = copy;
        EXPECT_EQ(another.GetUseCount(), 4);
    }
    EXPECT_EQ(s.GetUseCount(), 2);
    Status assigned;
    assigned = s;
    EXPECT_EQ(assigned.GetUseCount(), 3);
    assigned.SetStatusCode(-2);
    EXPECT_EQ(assigned.GetUseCount(), 2);
    EXPECT_EQ(s.GetUseCount(), 2);
    EXPECT_EQ(s.GetStatusCode(), -1);
    EXPECT_GE(Status::GetFailed().GetUseCount(), 2);
}

TEST(StatusException, CarriesAndClonesTheStatus) {
    Status s(-3, "bad %What%");
    s.SetAttribute("What", "input");
    Util::Exception e(s);
    EXPECT_STREQ(e.GetClassName(), "Util::Object");
    EXPECT_EQ(e.GetStatus().GetStatusCode(), -3);
    std::unique_ptr<Util::IClone> clone = e.Clone();
    auto* copy = dynamic_cast<Util::Exception*>(clone.get());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(Message(copy->GetStatus()), "bad input");
    Util::Exception other(Status::GetFailed());
    other = e;
    EXPECT_EQ(other.GetStatus().GetStatusCode(), -3);
}

TEST(StatusHistory, StartsWithSucceeded) {
    Status last = Util::GetStatusHistory()->GetLastStatus();
    // Nothing in this test program reports through the operations manager.
    EXPECT_EQ(last.GetStatusCode(), 0);
    EXPECT_EQ(Message(last), "Succeeded");
}
