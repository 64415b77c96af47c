// Util::Ops, the process's operations manager, and Util::LocalOps, the per-function reporter.
//
// Every module reports diagnostic events here: function entry and exit, reported statuses,
// assertions, verifications, messages and the caller-defined types (checkpoints, object life
// events, errors to send, deprecated code). An event has a type, a level and a source context.
// Before BeginOperations every event counts as wanted and is queued; BeginOperations replays the
// queue through the subscriptions; after EndOperations events are dropped (or forwarded by a
// connected bridge). Every entry point tests activity before it formats anything, and none of
// them changes the caller's errno or Win32 last-error value. Everything here may be called from
// any thread; BeginOperations and EndOperations belong on the application's main thread.
//
// Modules normally use the macros of "Util/OpsMacros.h" rather than these classes directly.
#pragma once

#include "Util/Export.h"
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "Util/Compiler.h"
#include "Util/OpsEventMask.h"
#include "Util/OpsSourceContext.h"
#include "Util/Status.h"

#define ZT_OPS_PRINTF(fmtIndex, firstArg) ZT_PRINTF_FORMAT(fmtIndex, firstArg)

namespace Util {

class AttributeSet;
class OpsBridge;
class OpsContext;
class OpsMessageHandlerManager;
class OpsSubscriptionFileManager;
class OpsSubscriptionManager;
class Ops;

class ZTUTIL_API Ops {
public:
    enum EventType {
        kFuncEnter = 0,
        kFuncStatus = 1,
        kFuncExit = 2,
        kAssert = 3,
        kVerify = 4,
        kMessage = 5,
        kCheckpoint = 6,
        kDump = 7,
        kObjectConstruct = 8,
        kObjectCopy = 9,
        kObjectAssign = 10,
        kObjectDestruct = 11,
        kSendError = 12,
        kDeprecated = 13,
        kUnknownEventType = 14 // what an unknown keyword maps to; no filter matches it
    };
    enum Level {
        kLvlNA = 0,
        kLvlInfoDetail = 1,
        kLvlInfoSummary = 2,
        kLvlWarning = 3,
        kLvlError = 4,
        kLvlSevereError = 5,
        kLvlFatalError = 6,
        kUnknownLevel = 7
    };

    static constexpr const char* kFuncEnterStr = "FUNC_ENTER";
    static constexpr const char* kFuncStatusStr = "FUNC_STATUS";
    static constexpr const char* kFuncExitStr = "FUNC_EXIT";
    static constexpr const char* kAssertStr = "ASSERT";
    static constexpr const char* kVerifyStr = "VERIFY";
    static constexpr const char* kMessageStr = "MESSAGE";
    static constexpr const char* kCheckpointStr = "CHECKPOINT";
    static constexpr const char* kDumpStr = "DUMP";
    static constexpr const char* kObjectConstructStr = "OBJECT_CONSTRUCT";
    static constexpr const char* kObjectCopyStr = "OBJECT_COPY";
    static constexpr const char* kObjectAssignStr = "OBJECT_ASSIGN";
    static constexpr const char* kObjectDestructStr = "OBJECT_DESTRUCT";
    static constexpr const char* kSendErrorStr = "SEND_ERROR";
    static constexpr const char* kDeprecatedStr = "DEPRECATED";

    static constexpr const char* kLvlNAStr = "LVL_NA";
    static constexpr const char* kLvlInfoDetailStr = "LVL_INFO_DETAIL";
    static constexpr const char* kLvlInfoSummaryStr = "LVL_INFO_SUMMARY";
    static constexpr const char* kLvlWarningStr = "LVL_WARNING";
    static constexpr const char* kLvlErrorStr = "LVL_ERROR";
    static constexpr const char* kLvlSevereErrorStr = "LVL_SEVERE_ERROR";
    static constexpr const char* kLvlFatalErrorStr = "LVL_FATAL_ERROR";

    // Reports an assertion through the caller's source context; made where the assertion is.
    class ZTUTIL_API AssertFunctor {
    public:
        AssertFunctor(Ops& ops, const char* file, long line, const char* function,
                      const char* signature, EventType type = kAssert) noexcept
            : m_ops(ops), m_context(file, line, function, signature), m_type(type) {}
        AssertFunctor(const AssertFunctor&) = default;
        AssertFunctor& operator=(const AssertFunctor&) = delete;

        // When report is true and the type is wanted, formats and reports the text at level 0.
        // A null format becomes "Assert/Verify failed with no error message", and so does the
        // caller's pointer. Returns whether a handler handled the event.
        bool ProcessAssertMessage(bool report, const char*& format, va_list args);
        bool operator()(bool report, const char* format, ...) ZT_OPS_PRINTF(3, 4);

    private:
        Ops& m_ops;
        SourceContext m_context;
        EventType m_type;
    };

    // Reports a message of a fixed type and level. Passes when the level or the type is wanted
    // (for the type MESSAGE an active level suffices), unlike Ops::Message which needs both.
    class ZTUTIL_API MessageFunctor {
    public:
        MessageFunctor(Ops& ops, Level level, EventType type, const char* file, long line,
                       const char* function, const char* signature) noexcept
            : m_ops(ops), m_level(level), m_type(type), m_context(file, line, function, signature) {
        }
        MessageFunctor(const MessageFunctor&) = default;
        MessageFunctor& operator=(const MessageFunctor&) = delete;

        bool operator()(const char* format, ...) ZT_OPS_PRINTF(2, 3);

    private:
        Ops& m_ops;
        Level m_level;
        EventType m_type;
        SourceContext m_context;
    };

    static bool Initialized() noexcept;

    // Starts operations with the application's context (borrowed; it must outlive operations).
    // The first call initialises the context (custom handlers, custom filters, subscriptions);
    // every call looks for "*.ops" files in the context's operations directory again.
    void BeginOperations(const OpsContext* context);
    void EndOperations();
    bool IsOperational() const noexcept;
    const OpsContext* GetOpsContext() const noexcept;

    // True when some subscription wants the type (or level), and always before operations begin.
    bool IsEventActive(EventType type) const noexcept {
        return unsigned(type) < OpsEventMask::kTypeCount &&
               (s_activeTypes.load(std::memory_order_relaxed) >> unsigned(type) & 1u) != 0;
    }
    bool IsLevelActive(Level level) const noexcept {
        return unsigned(level) < OpsEventMask::kLevelCount &&
               (s_activeLevels.load(std::memory_order_relaxed) >> unsigned(level) & 1u) != 0;
    }
    // The reporting gate: false when no subscription could want this type at this level (and
    // nothing may be queued or forwarded), so the caller can skip the event without formatting.
    // Filters that cannot be decided in advance (regular expressions, INI values) count as
    // wanting every pair they might match.
    static bool IsEventLevelActive(EventType type, Level level) noexcept {
        const unsigned t = unsigned(type), l = unsigned(level);
        if (t >= OpsEventMask::kTypeCount || l >= OpsEventMask::kLevelCount)
            return false;
        return (s_gate[t >> 3].load(std::memory_order_relaxed) & OpsEventMask::BitOf(t, l)) != 0;
    }

    // Reports one event; returns whether a handler handled it.
    bool ReportEventA(EventType type, Level level, const SourceContext& context,
                      const char* message);
    bool ReportEventHelper(EventType type, Level level, const SourceContext& context,
                           const char* message, const char* unformattedMessage);

    // A MESSAGE event at the level; both the type MESSAGE and the level must be wanted.
    bool Message(const SourceContext& context, Level level, const char* format, ...)
        ZT_OPS_PRINTF(4, 5);
    bool MessageV(const SourceContext& context, Level level, const char* format, va_list args);

    // Does nothing but keep the error state: assertions are reported through AssertFunctor.
    void Assert(bool condition, const char* expression, const char* file, long line,
                const char* function, const char* signature);
    // Reports "(expression) is false" as a VERIFY event when the condition is false.
    bool Verify(bool condition, const char* expression, const char* file, long line,
                const char* function, const char* signature) {
        if (!condition)
            VerifyFailed(expression, file, line, function, signature);
        return condition;
    }

    static EventType MapEventTypeStrToEventType(const char* keyword) noexcept;
    static const char* MapEventTypeToEventTypeStr(EventType type) noexcept;
    static Level MapLevelStrToLevel(const char* keyword) noexcept;
    static const char* MapLevelToLevelStr(Level level) noexcept;

    // An event that arrived from the process at the other end of the bridge: handled by this
    // process's subscriptions when operations are running, otherwise queued like any other.
    virtual bool ReportBridgedEvent(EventType type, Level level, const SourceContext& context,
                                    const char* message);

    OpsSubscriptionManager& GetSubscriptionManager() noexcept;
    OpsMessageHandlerManager& GetMessageHandlerManager() noexcept;
    OpsBridge& GetBridge() noexcept;
    // Replaces the bridge (a null pointer restores the default, never-connected bridge). Call it
    // before BeginOperations or after EndOperations.
    void SetBridge(std::unique_ptr<OpsBridge> bridge);

    // Number of events waiting for BeginOperations.
    std::size_t GetPendingEventCount() const;
    // At most this many events wait for BeginOperations (16384 unless changed). Once the queue
    // is full, later early events are counted and dropped without being formatted, and
    // BeginOperations reports how many were lost as a warning; this keeps a process that never
    // begins operations (a tool, a test program) from collecting every entry and exit forever.
    void SetPendingEventCapacity(std::size_t capacity);
    std::size_t GetPendingEventCapacity() const;

    // Recomputes the activity sets; the subscription manager calls this after every change.
    void RefreshActivity() noexcept;

    Ops(const Ops&) = delete;
    Ops& operator=(const Ops&) = delete;

private:
    friend Ops& GetOps();
    Ops();
    ~Ops(); // never called: the manager lives until the process ends

    void VerifyFailed(const char* expression, const char* file, long line, const char* function,
                      const char* signature);
    bool Dispatch(EventType type, Level level, const SourceContext& context, const char* message,
                  const char* unformattedMessage);
    void ReplayPending();

    enum State { kNotBegun = 0, kOperational = 1, kEnded = 2 };

    std::unique_ptr<OpsBridge> m_pBridge;
    std::atomic<bool> m_operational{false};
    struct FileManagers;
    std::unique_ptr<FileManagers> m_pFileManagers;
    OpsSubscriptionManager* m_pSubscriptionManager = nullptr;
    std::atomic<const OpsContext*> m_pContext{nullptr};

    std::atomic<int> m_state{kNotBegun};
    struct PendingQueue;
    std::unique_ptr<PendingQueue> m_pPending;

    // Activity, read inline by every reporting macro. Before operations begin all bits are set.
    static std::atomic<uint64_t> s_gate[2];
    static std::atomic<uint32_t> s_activeTypes;
    static std::atomic<uint32_t> s_activeLevels;
};

// The process's operations manager, created on first use and never destroyed.
ZTUTIL_API Ops& GetOps();

// The per-function reporter: reports entry and exit when wanted and returns statuses through
// its functors, recording each as the process's last status.
class ZTUTIL_API LocalOps {
public:
    explicit LocalOps(const SourceContext& context) : m_context(context) {
        if (Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA))
            ReportEntered();
    }
    LocalOps(const char* file, long line, const char* function, const char* signature)
        : m_context(file, line, function, signature) {
        if (Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA))
            ReportEntered();
    }
    ~LocalOps() {
        if (Ops::IsEventLevelActive(Ops::kFuncExit, Ops::kLvlNA))
            ReportExited();
    }
    LocalOps(const LocalOps&) = delete;
    LocalOps& operator=(const LocalOps&) = delete;

    Status ReportStatus(const Status& status, long line);
    // The text is taken as it stands (no printf formatting).
    Status ReportStatus(long code, long line, const char* format);
    Status ReportStatus(long code, long line, const AttributeSet& attributes, const char* format);
    // The text is formatted printf-style; write a status attribute name as %%Name%%.
    Status ReportStatusV(long code, long line, const char* format, va_list args);
    Status ReportStatusV(long code, long line, const AttributeSet& attributes, const char* format,
                         va_list args);

    const SourceContext& GetSourceContext() const noexcept { return m_context; }
    void SetLine(long line) noexcept { m_context.SetLine(line); }

    // Made at the line of the report; reports with ReportStatusV and returns the status.
    class ZTUTIL_API ReportStatusCodeFunctor {
    public:
        ReportStatusCodeFunctor(LocalOps& ops, long line) noexcept : m_ops(ops), m_code(-1) {
            ops.SetLine(line);
        }
        ReportStatusCodeFunctor(LocalOps& ops, long code, long line) noexcept
            : m_ops(ops), m_code(code) {
            ops.SetLine(line);
        }
        ReportStatusCodeFunctor(const ReportStatusCodeFunctor&) = default;
        ReportStatusCodeFunctor& operator=(const ReportStatusCodeFunctor&) = delete;

        Status operator()(long code, const char* format, ...) ZT_OPS_PRINTF(3, 4);
        Status operator()(const char* format, ...) ZT_OPS_PRINTF(2, 3);

    private:
        LocalOps& m_ops;
        long m_code;
    };

    // Like ReportStatusCodeFunctor, then throws a Util::Exception carrying the status.
    class ZTUTIL_API ThrowStatusCodeFunctor {
    public:
        ThrowStatusCodeFunctor(LocalOps& ops, long line) noexcept : m_ops(ops), m_code(-1) {
            ops.SetLine(line);
        }
        ThrowStatusCodeFunctor(LocalOps& ops, long code, long line) noexcept
            : m_ops(ops), m_code(code) {
            ops.SetLine(line);
        }
        ThrowStatusCodeFunctor(const ThrowStatusCodeFunctor&) = default;
        ThrowStatusCodeFunctor& operator=(const ThrowStatusCodeFunctor&) = delete;

        [[noreturn]] void operator()(long code, const char* format, ...) ZT_OPS_PRINTF(3, 4);
        [[noreturn]] void operator()(const char* format, ...) ZT_OPS_PRINTF(2, 3);

    private:
        LocalOps& m_ops;
        long m_code;
    };

private:
    void ReportEntered();
    void ReportExited();

    SourceContext m_context;
};

} // namespace Util
