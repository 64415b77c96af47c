#include "Util/Ops.h"

#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "OperationsManager/src/opsfilelist.h"
#include "OperationsManager/src/opsformat.h"
#include "Util/OpsBridge.h"
#include "Util/OpsContext.h"
#include "Util/OpsMessageHandlerManager.h"
#include "Util/OpsSubscriptionFileManager.h"
#include "Util/OpsSubscriptionManager.h"
#include "Util/Win32.h"

namespace Util {

namespace {

// Every (type, level) pair: eight bits per type, seven of them used.
constexpr uint64_t kAllPairsLow = 0x7f7f7f7f7f7f7f7full;
constexpr uint64_t kAllPairsHigh = 0x00007f7f7f7f7f7full;
constexpr uint32_t kAllTypes = (1u << OpsEventMask::kTypeCount) - 1;
constexpr uint32_t kAllLevels = (1u << OpsEventMask::kLevelCount) - 1;

const char* const kEventTypeStrs[] = {
    Ops::kFuncEnterStr,       Ops::kFuncStatusStr, Ops::kFuncExitStr,     Ops::kAssertStr,
    Ops::kVerifyStr,          Ops::kMessageStr,    Ops::kCheckpointStr,   Ops::kDumpStr,
    Ops::kObjectConstructStr, Ops::kObjectCopyStr, Ops::kObjectAssignStr, Ops::kObjectDestructStr,
    Ops::kSendErrorStr,       Ops::kDeprecatedStr};
const char* const kLevelStrs[] = {
    Ops::kLvlNAStr,    Ops::kLvlInfoDetailStr,  Ops::kLvlInfoSummaryStr, Ops::kLvlWarningStr,
    Ops::kLvlErrorStr, Ops::kLvlSevereErrorStr, Ops::kLvlFatalErrorStr};

// Checked only as a whole text: this one message is always reported as not handled.
const char kCrashDumpMessage[] = "301 or 305 crash dump";

std::atomic<bool> g_initialized{false};

} // namespace

std::atomic<uint64_t> Ops::s_gate[2] = {{kAllPairsLow}, {kAllPairsHigh}};
std::atomic<uint32_t> Ops::s_activeTypes{kAllTypes};
std::atomic<uint32_t> Ops::s_activeLevels{kAllLevels};

// The subscription-file managers, and the locks that keep them and the bridge consistent.
struct Ops::FileManagers {
    std::mutex mutex; // guards list and the bridge pointer
    std::vector<std::unique_ptr<OpsSubscriptionFileManager>> list;
    std::atomic<bool> customBridge{false}; // a bridge other than the never-connected default
    std::mutex refreshMutex;               // serialises RefreshActivity
};

struct Ops::PendingQueue {
    struct Entry {
        EventType type;
        Level level;
        SourceContext context;
        std::string text;
    };
    mutable std::mutex mutex;
    std::deque<Entry> entries;
    std::size_t capacity = 16384;
    std::size_t dropped = 0;
    std::atomic<bool> full{false};
};

Ops& GetOps() {
    // Created on first use and deliberately never destroyed: events may be reported from static
    // destructors of other modules until the process ends.
    static Ops* const s_pOps = new Ops();
    return *s_pOps;
}

Ops::Ops()
    : m_pBridge(new OpsNullBridge()), m_pFileManagers(new FileManagers()),
      m_pSubscriptionManager(&OpsSubscriptionManager::GetInstance()),
      m_pPending(new PendingQueue()) {
    OpsMessageHandlerManager::GetInstance();
    g_initialized.store(true, std::memory_order_release);
}

Ops::~Ops() = default;

bool Ops::Initialized() noexcept {
    return g_initialized.load(std::memory_order_acquire);
}

bool Ops::IsOperational() const noexcept {
    return m_operational.load(std::memory_order_acquire);
}

const OpsContext* Ops::GetOpsContext() const noexcept {
    return m_pContext.load(std::memory_order_acquire);
}

OpsSubscriptionManager& Ops::GetSubscriptionManager() noexcept {
    return *m_pSubscriptionManager;
}

OpsMessageHandlerManager& Ops::GetMessageHandlerManager() noexcept {
    return OpsMessageHandlerManager::GetInstance();
}

OpsBridge& Ops::GetBridge() noexcept {
    return *m_pBridge;
}

void Ops::SetBridge(std::unique_ptr<OpsBridge> bridge) {
    {
        std::lock_guard<std::mutex> lock(m_pFileManagers->mutex);
        m_pFileManagers->customBridge.store(bridge != nullptr);
        m_pBridge = bridge ? std::move(bridge) : std::unique_ptr<OpsBridge>(new OpsNullBridge());
    }
    RefreshActivity();
}

std::size_t Ops::GetPendingEventCount() const {
    std::lock_guard<std::mutex> lock(m_pPending->mutex);
    return m_pPending->entries.size();
}

void Ops::SetPendingEventCapacity(std::size_t capacity) {
    {
        std::lock_guard<std::mutex> lock(m_pPending->mutex);
        m_pPending->capacity = capacity;
        m_pPending->full.store(m_pPending->entries.size() >= capacity, std::memory_order_relaxed);
    }
    RefreshActivity();
}

std::size_t Ops::GetPendingEventCapacity() const {
    std::lock_guard<std::mutex> lock(m_pPending->mutex);
    return m_pPending->capacity;
}

void Ops::RefreshActivity() noexcept {
    // Serialised so that the last refresh always publishes the latest state and subscriptions.
    std::lock_guard<std::mutex> lock(m_pFileManagers->refreshMutex);
    const int state = m_state.load(std::memory_order_acquire);
    const OpsEventMask wanted = m_pSubscriptionManager->GetEventMask();
    uint64_t low = kAllPairsLow, high = kAllPairsHigh;
    uint32_t types = kAllTypes, levels = kAllLevels;
    if (state == kNotBegun && m_pPending->full.load(std::memory_order_relaxed) &&
        !m_pFileManagers->customBridge.load()) {
        // Nothing more can be queued: skip early events before they are formatted.
        low = high = 0;
    } else if (state != kNotBegun) {
        types = wanted.Types();
        levels = wanted.Levels();
        if (state == kOperational) {
            low = wanted.m_words[0];
            high = wanted.m_words[1];
        } else if (!m_pFileManagers->customBridge) {
            // Ended with no bridge to forward through: every event would be dropped.
            low = high = 0;
        }
    }
    s_activeTypes.store(types, std::memory_order_relaxed);
    s_activeLevels.store(levels, std::memory_order_relaxed);
    s_gate[0].store(low, std::memory_order_relaxed);
    s_gate[1].store(high, std::memory_order_relaxed);
}

void Ops::BeginOperations(const OpsContext* context) {
    if (context == nullptr)
        return;
    ErrorStateGuard errorState;
    {
        // Beginning again after an end: events reported while we start up are queued and
        // replayed below, as on the first start.
        std::lock_guard<std::mutex> lock(m_pPending->mutex);
        int ended = kEnded;
        m_state.compare_exchange_strong(ended, kNotBegun, std::memory_order_acq_rel);
    }
    RefreshActivity();
    m_pContext.store(context, std::memory_order_release);
    if (!m_operational.load(std::memory_order_acquire))
        context->Initialize();

    TString directory;
    context->GetOpsDirectory(directory);
    std::vector<std::unique_ptr<OpsSubscriptionFileManager>> found;
    for (const std::string& path : OpsDetail::ListMatchingFiles(directory.c_str(), "*.ops")) {
        if (path.size() > 3 && path.compare(path.size() - 3, 3, "ops") == 0)
            found.emplace_back(new OpsSubscriptionFileManager(path.c_str()));
    }
    {
        // Files are looked for again on every call: the previous set is replaced, last first.
        std::lock_guard<std::mutex> lock(m_pFileManagers->mutex);
        while (!m_pFileManagers->list.empty())
            m_pFileManagers->list.pop_back();
        m_pFileManagers->list = std::move(found);
    }

    {
        std::lock_guard<std::mutex> lock(m_pPending->mutex);
        m_state.store(kOperational, std::memory_order_release);
        m_operational.store(true, std::memory_order_release);
    }
    m_pBridge->Start();
    RefreshActivity();
    ReplayPending();
}

void Ops::ReplayPending() {
    std::size_t dropped = 0;
    std::size_t capacity = 0;
    for (;;) {
        PendingQueue::Entry entry;
        {
            std::lock_guard<std::mutex> lock(m_pPending->mutex);
            if (m_pPending->entries.empty()) {
                dropped = m_pPending->dropped;
                capacity = m_pPending->capacity;
                m_pPending->dropped = 0;
                m_pPending->full.store(false, std::memory_order_relaxed);
                break;
            }
            entry = std::move(m_pPending->entries.front());
            m_pPending->entries.pop_front();
        }
        if (IsEventActive(entry.type) && (entry.type != kMessage || IsLevelActive(entry.level)))
            ReportEventHelper(entry.type, entry.level, entry.context, entry.text.c_str(), nullptr);
    }
    if (dropped != 0) {
        Message(SourceContext(__FILE__, __LINE__, __func__, "void Util::Ops::ReplayPending()"),
                kLvlWarning,
                "%lu events reported before operations began were dropped: the queue holds %lu",
                static_cast<unsigned long>(dropped), static_cast<unsigned long>(capacity));
    }
}

void Ops::EndOperations() {
    ErrorStateGuard errorState;
    m_pBridge->Stop();
    m_operational.store(false, std::memory_order_release);
    {
        std::lock_guard<std::mutex> lock(m_pPending->mutex);
        m_state.store(kEnded, std::memory_order_release);
    }
    m_pContext.store(nullptr, std::memory_order_release);
    {
        std::lock_guard<std::mutex> lock(m_pFileManagers->mutex);
        while (!m_pFileManagers->list.empty())
            m_pFileManagers->list.pop_back();
    }
    RefreshActivity();
}

bool Ops::ReportEventA(EventType type, Level level, const SourceContext& context,
                       const char* message) {
    return ReportEventHelper(type, level, context, message, nullptr);
}

bool Ops::ReportEventHelper(EventType type, Level level, const SourceContext& context,
                            const char* message, const char* unformattedMessage) {
    ErrorStateGuard errorState;
    return Dispatch(type, level, context, message ? message : "", unformattedMessage);
}

bool Ops::Dispatch(EventType type, Level level, const SourceContext& context, const char* message,
                   const char* unformattedMessage) {
    for (;;) {
        if (m_state.load(std::memory_order_acquire) == kOperational) {
            const MessageContext messageContext(context,
                                                unformattedMessage ? unformattedMessage : message);
            const bool handled = OpsMessageHandlerManager::GetInstance().HandleMessage(
                type, level, messageContext, message);
            if (std::strcmp(message, kCrashDumpMessage) == 0)
                return false;
            return handled;
        }
        if (m_pFileManagers->customBridge) {
            std::unique_lock<std::mutex> lock(m_pFileManagers->mutex);
            if (m_pBridge->IsConnected()) {
                m_pBridge->ForwardEvent(type, level, context, message);
                return false;
            }
        }
        std::unique_lock<std::mutex> lock(m_pPending->mutex);
        const int state = m_state.load(std::memory_order_acquire);
        if (state == kEnded)
            return false;
        if (state == kNotBegun) {
            if (m_pPending->entries.size() < m_pPending->capacity) {
                m_pPending->entries.push_back(PendingQueue::Entry{type, level, context, message});
                return false;
            }
            ++m_pPending->dropped;
            if (!m_pPending->full.exchange(true, std::memory_order_relaxed)) {
                lock.unlock();
                RefreshActivity(); // closes the gate until operations begin
            }
            return false;
        }
        // Operations began while we were deciding: handle the event instead of queueing it.
    }
}

bool Ops::ReportBridgedEvent(EventType type, Level level, const SourceContext& context,
                             const char* message) {
    return ReportEventHelper(type, level, context, message, nullptr);
}

bool Ops::Message(const SourceContext& context, Level level, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const bool handled = MessageV(context, level, format, args);
    va_end(args);
    return handled;
}

bool Ops::MessageV(const SourceContext& context, Level level, const char* format, va_list args) {
    if (format == nullptr || !IsEventLevelActive(kMessage, level))
        return false;
    if (m_state.load(std::memory_order_acquire) != kNotBegun &&
        !(IsEventActive(kMessage) && IsLevelActive(level)))
        return false;
    ErrorStateGuard errorState;
    const OpsDetail::FormattedText text(format, args);
    // ReportEventHelper without its second error-state guard: this one already covers it.
    return Dispatch(kMessage, level, context, text.c_str(), format);
}

void Ops::Assert(bool, const char*, const char*, long, const char*, const char*) {
    // Assertions are reported only through AssertFunctor; this entry point keeps the error state
    // untouched and nothing more.
    ErrorStateGuard errorState;
}

void Ops::VerifyFailed(const char* expression, const char* file, long line, const char* function,
                       const char* signature) {
    if (!IsEventLevelActive(kVerify, kLvlNA) || !IsEventActive(kVerify))
        return;
    ErrorStateGuard errorState;
    std::string text("(");
    text += expression ? expression : "";
    text += ") is false";
    ReportEventA(kVerify, kLvlNA, SourceContext(file, line, function, signature), text.c_str());
}

Ops::EventType Ops::MapEventTypeStrToEventType(const char* keyword) noexcept {
    if (keyword != nullptr) {
        for (unsigned i = 0; i < OpsEventMask::kTypeCount; ++i)
            if (std::strcmp(keyword, kEventTypeStrs[i]) == 0)
                return static_cast<EventType>(i);
    }
    return kUnknownEventType;
}

const char* Ops::MapEventTypeToEventTypeStr(EventType type) noexcept {
    const unsigned t = static_cast<unsigned>(type);
    return t < OpsEventMask::kTypeCount ? kEventTypeStrs[t] : "UNKNOWN OPS EVENT";
}

Ops::Level Ops::MapLevelStrToLevel(const char* keyword) noexcept {
    if (keyword != nullptr) {
        for (unsigned i = 0; i < OpsEventMask::kLevelCount; ++i)
            if (std::strcmp(keyword, kLevelStrs[i]) == 0)
                return static_cast<Level>(i);
    }
    return kUnknownLevel;
}

const char* Ops::MapLevelToLevelStr(Level level) noexcept {
    const unsigned l = static_cast<unsigned>(level);
    return l < OpsEventMask::kLevelCount ? kLevelStrs[l] : "UNKNOWN OPS EVENT LEVEL";
}

bool Ops::AssertFunctor::ProcessAssertMessage(bool report, const char*& format, va_list args) {
    if (!report || !Ops::IsEventLevelActive(m_type, kLvlNA) || !m_ops.IsEventActive(m_type))
        return false;
    ErrorStateGuard errorState;
    if (format == nullptr)
        format = "Assert/Verify failed with no error message";
    const OpsDetail::FormattedText text(format, args);
    return m_ops.ReportEventA(m_type, kLvlNA, m_context, text.c_str());
}

bool Ops::AssertFunctor::operator()(bool report, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const bool handled = ProcessAssertMessage(report, format, args);
    va_end(args);
    return handled;
}

bool Ops::MessageFunctor::operator()(const char* format, ...) {
    if (format == nullptr || !Ops::IsEventLevelActive(m_type, m_level))
        return false;
    const bool pass =
        (m_type == kMessage && m_ops.IsLevelActive(m_level)) || m_ops.IsEventActive(m_type);
    if (!pass)
        return false;
    ErrorStateGuard errorState;
    va_list args;
    va_start(args, format);
    const OpsDetail::FormattedText text(format, args);
    va_end(args);
    return m_ops.Dispatch(m_type, m_level, m_context, text.c_str(), format);
}

} // namespace Util
