#include <cerrno>
#include <functional>

#include "Util/Exception.h"
#include "Util/OpsMacros.h"
#include "Util/StatusHistory.h"
#include "Util/Win32.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::GetOps;
using Util::LocalOps;
using Util::Ops;
using Util::Status;
using namespace OpsTest;

namespace {

Status ReturnsThroughMacro(int code) {
    ZT_FUNC_OPS();
    if (code < 0)
        ZT_RETURN_STATUS(code, "failed with %d", code);
    ZT_RETURN_OK();
}

void ThrowsThroughMacro() {
    ZT_FUNC_OPS();
    ZT_THROW_STATUS(-8, "missing %s", "key");
}

Status LastStatus() {
    return Util::GetStatusHistory()->GetLastStatus();
}

} // namespace

using LocalOpsRunning = OpsRunning;

TEST_F(LocalOpsRunning, EntryExitAndStatusAreReportedWhenWanted) {
    auto enter = Subscribe("EVENT_TYPE_FILTER", "type", "FUNC_ENTER");
    auto exit = Subscribe("EVENT_TYPE_FILTER", "type", "FUNC_EXIT");
    { LocalOps local(Util::SourceContext("a.cpp", 5, "Work", "void Work()")); }
    ASSERT_EQ(enter->Count(), 1u);
    ASSERT_EQ(exit->Count(), 1u);
    EXPECT_EQ(enter->Events()[0].text, "Function Entered: Work");
    EXPECT_EQ(exit->Events()[0].text, "Function Exited: Work");
    EXPECT_EQ(exit->Events()[0].type, Ops::kFuncExit);

    auto statuses = Subscribe("EVENT_TYPE_FILTER", "type", "FUNC_STATUS");
    LocalOps local("b.cpp", 1, "Load", "int Load(const char*)");
    const Status returned = local.ReportStatus(Status(-8, "Not found"), 77);
    EXPECT_EQ(returned.GetStatusCode(), -8);
    EXPECT_EQ(local.GetSourceContext().GetLine(), 77);
    ASSERT_EQ(statuses->Count(), 1u);
    EXPECT_EQ(statuses->Events()[0].text,
              "Status Reported: Not found, function = Load, signature = int Load(const char*)");
    EXPECT_EQ(statuses->Events()[0].line, 77);
}

TEST_F(LocalOpsRunning, EveryReportBecomesTheLastStatusEvenUnheard) {
    LocalOps local("c.cpp", 1, "F", "void F()");
    const struct {
        std::function<Status()> report;
        long code;
        const char* message;
    } cases[] = {
        {[&] { return local.ReportStatus(Status(-3, "Invalid Argument"), 2); }, -3,
         "Invalid Argument"},
        {[&] { return local.ReportStatus(2, 3, "pending"); }, 2, "pending"},
        {[&] {
             Util::AttributeSet attributes;
             attributes.SetAttribute("FileName", "a.dat");
             return local.ReportStatus(-1, 4, attributes, "Cannot open %FileName%");
         },
         -1, "Cannot open a.dat"},
        {[&] { return LocalOps::ReportStatusCodeFunctor(local, 5)("code %d", 9); }, -1, "code 9"},
        {[&] { return LocalOps::ReportStatusCodeFunctor(local, -9, 6)("limit"); }, -9, "limit"},
        {[&] { return LocalOps::ReportStatusCodeFunctor(local, -9, 7)(-11, "given %s", "x"); }, -11,
         "given x"},
        {[] { return ReturnsThroughMacro(-5); }, -5, "failed with -5"},
        {[] { return ReturnsThroughMacro(0); }, 0, "Succeeded"},
    };
    for (const auto& c : cases) {
        Status returned = c.report();
        Status last = LastStatus();
        EXPECT_EQ(returned.GetStatusCode(), c.code);
        EXPECT_EQ(last.GetStatusCode(), c.code);
        EXPECT_STREQ(last.GetStatusMessage().c_str(), c.message);
    }
}

TEST_F(LocalOpsRunning, ThrowFunctorReportsThenThrows) {
    auto statuses = Subscribe("EVENT_TYPE_FILTER", "type", "FUNC_STATUS");
    try {
        ThrowsThroughMacro();
        FAIL() << "no exception";
    } catch (const Util::Exception& e) {
        Status status = e.GetStatus();
        EXPECT_EQ(status.GetStatusCode(), -8);
        EXPECT_STREQ(status.GetStatusMessage().c_str(), "missing key");
    }
    EXPECT_EQ(LastStatus().GetStatusCode(), -8);
    ASSERT_EQ(statuses->Count(), 1u);
    LocalOps local("d.cpp", 1, "F", "void F()");
    EXPECT_THROW(LocalOps::ThrowStatusCodeFunctor(local, 3)("default code"), Util::Exception);
    EXPECT_EQ(LastStatus().GetStatusCode(), -1);
}

TEST_F(LocalOpsRunning, ReportingKeepsTheCallersErrorState) {
    auto all = Subscribe(); // everything is wanted, so every path formats and handles
    LocalOps local("e.cpp", 1, "F", "void F()");
    const std::function<void()> entries[] = {
        [] { LocalOps inner("e.cpp", 2, "G", "void G()"); },
        [&] { (void)local.ReportStatus(-1, 3, "failed"); },
        [&] { (void)LocalOps::ReportStatusCodeFunctor(local, 4)("x %d", 1); },
        [&] {
            try {
                LocalOps::ThrowStatusCodeFunctor(local, 5)("thrown");
            } catch (const Util::Exception&) {
            }
        },
        [] { GetOps().Message(Util::SourceContext("e.cpp", 6, "F", "F"), Ops::kLvlError, "m"); },
        [] { GetOps().Verify(false, "x", "e.cpp", 7, "F", "F"); },
        [] { GetOps().Assert(false, "x", "e.cpp", 8, "F", "F"); },
        [] { Ops::AssertFunctor(GetOps(), "e.cpp", 9, "F", "F")(true, "a"); },
        [] { Ops::MessageFunctor(GetOps(), Ops::kLvlError, Ops::kDump, "e", 1, "F", "F")("d"); },
        [] { GetOps().ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, Util::SourceContext(), "c"); },
    };
    int index = 0;
    for (const auto& entry : entries) {
        Util::Win32::SetLastError(1234);
        errno = ERANGE;
        entry();
        EXPECT_EQ(Util::Win32::GetLastError(), 1234u) << "entry " << index;
        EXPECT_EQ(errno, ERANGE) << "entry " << index;
        ++index;
    }
    EXPECT_GE(all->Count(), 9u);
}
