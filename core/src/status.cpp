#include "Util/Status.h"

#include "Util/Compiler.h"
#include "core/src/spinlock.h"

#include <cstdlib>
#include <cstring>

namespace Util {

// Creating and dropping a status is the library's most frequent operation. Its whole path (the
// pool's spare entry, the format copy, the hand back) is defined in this file, so that the
// compiler sees it at once and inlines it whole into the constructors and Release.

inline StatusPool* Status::Pool() {
    StatusPool* pool = StatusPool::s_pCurrent.load(std::memory_order_acquire);
    return pool != nullptr ? pool : GetStatusPool();
}

void StatusPool::Take(boost::shared_ptr<StatusImpl>& result) {
    Detail::ElidableSpinGuard guard(m_lock);
    if (m_spare != kNoSpare) {
        // Handed back by its last holder, so free for certain.
        m_spare = kNoSpare;
        result.swap(m_spareRef);
    } else {
        TakeFromList(result);
    }
    result->m_lent = true;
}

void StatusPool::GiveBack(boost::shared_ptr<StatusImpl>& impl) {
    const std::uint32_t index = impl->m_poolIndex;
    Detail::ElidableSpinGuard guard(m_lock);
    impl->m_lent = false;
    if (m_spare == kNoSpare && m_free.NoneBelow(index)) {
        m_spare = index;
        m_spareRef.swap(impl);
        return;
    }
    Free(index, impl);
}

void StatusImpl::Reuse(long code, const char* format) {
    m_statusCode = static_cast<std::int32_t>(code);
    if (format == nullptr)
        format = "";
    const std::size_t length = std::strlen(format);
    if (m_formatStr) {
        // Appending to the emptied string reuses its storage and skips assign's overlap checks.
        TString::string_type& text = m_formatStr->str();
        text.clear();
        text.append(format, length);
    } else {
        m_formatStr.emplace(format, length);
    }
    // An engaged but empty message reads as not yet expanded, like an absent one.
    if (m_messageStr)
        m_messageStr->Empty();
    m_messageReady.store(false, std::memory_order_release);
    if (GetAttributeCount() != 0)
        ClearAttributes();
}

ZT_FLATTEN Status::Status() {
    Pool()->Take(m_pImpl);
    m_pImpl->Reuse(0, "Succeeded");
}

ZT_FLATTEN Status::Status(long code, const char* format) {
    Pool()->Take(m_pImpl);
    m_pImpl->Reuse(code, format);
}

Status& Status::operator=(const Status& other) {
    if (m_pImpl != other.m_pImpl) {
        boost::shared_ptr<StatusImpl> old = std::move(m_pImpl);
        m_pImpl = other.m_pImpl;
        Release(old);
    }
    return *this;
}

ZT_FLATTEN void Status::Release(boost::shared_ptr<StatusImpl>& impl) {
    StatusImpl* p = impl.get();
    // The only holder of a lent reference moves it back. Nobody else can take a reference to it
    // meanwhile: every other reference comes from copying a holder. Any other drop is a plain
    // decrement (a lent implementation whose count reaches zero on another thread goes back
    // through the pool's deleter).
    if (p != nullptr && p->m_lent && impl.use_count() == 1) {
        StatusPool* pool = StatusPool::s_pCurrent.load(std::memory_order_acquire);
        if (pool != nullptr) {
            pool->GiveBack(impl);
            return;
        }
    }
    impl.reset();
}

long Status::GetStatusCodeComponentOffset() const {
    long code = m_pImpl->GetStatusCode();
    long magnitude = code < 0 ? -code : code;
    return magnitude / 1000 * 1000;
}

void Status::CopyIfShared() {
    // The pool holds one reference, so 2 means this status alone uses the implementation.
    if (GetUseCount() >= 3) {
        Status fresh;
        *fresh.m_pImpl = *m_pImpl;
        *this = fresh;
    }
}

void Status::SetStatusCode(long code) {
    CopyIfShared();
    m_pImpl->SetStatusCode(code);
}

void Status::SetFormatStr(const TString& format) {
    CopyIfShared();
    m_pImpl->SetFormatStr(format);
}

void Status::SetAttribute(const char* name, const char* value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, const TString& value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, short value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, int value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, long value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, long long value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, double value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, bool value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttribute(const char* name, const boost::any& value) {
    CopyIfShared();
    m_pImpl->SetAttribute(name, value);
}
void Status::SetAttributes(const AttributeSet& attributes) {
    CopyIfShared();
    m_pImpl->SetAttributes(attributes);
}
void Status::ClearAttribute(const char* name) {
    CopyIfShared();
    m_pImpl->ClearAttribute(name);
}
void Status::ClearAttributes() {
    CopyIfShared();
    m_pImpl->ClearAttributes();
}

// The predefined statuses are built while the library loads, before any other static object
// of the library, so that every initialiser may already use them.
namespace {

struct PredefinedStatuses {
    Status succeeded{0, "Succeeded"};
    Status noValue{1, "Succeeded, No Value"};
    Status resultPending{2, "Succeeded, Result Pending"};
    Status notUsed{3, "Succeeded, Supplied data not used"};
    Status failed{-1, "Failed"};
    Status unknown{-2, "Unknown Error"};
    Status invalidArg{-3, "Invalid Argument"};
    Status nullPtrArg{-4, "Invalid Argument: Null Pointer"};
    Status notImplemented{-5, "Not Implemented"};
    Status comError{-6, "COM Error"};
    Status allocFailed{-7, "Memory failure"};
    Status notFound{-8, "Not found"};
    Status limitExceeded{-9, "Limit exceeded"};
    Status statusNotSet{-10, "Status has not yet been set"};
    Status systemConfigError{-11, "System Configuration Error"};
    Status systemAccessDenied{-12, "System Error: Access Denied"};
    Status outOfMemory{-13, "Insufficient Memory"};
    Status syntaxError{-14, "Syntax Error"};
    Status incomplete{-15, "Incomplete Operation"};
    Status notInitialized{-16, "Not Initialized"};
    Status userCancelledAction{-17, "The user cancelled the action."};
    Status primaryKeyValueRef{
        -18,
        "Primary key for row in parent table is referenced by foreign key in some other table."};
};

ZT_INIT_PRIORITY(200)
const PredefinedStatuses g_predefined;

} // namespace

const Status& Status::GetSucceeded() {
    return g_predefined.succeeded;
}
const Status& Status::GetNoValue() {
    return g_predefined.noValue;
}
const Status& Status::GetResultPending() {
    return g_predefined.resultPending;
}
const Status& Status::GetNotUsed() {
    return g_predefined.notUsed;
}
const Status& Status::GetFailed() {
    return g_predefined.failed;
}
const Status& Status::GetUnknown() {
    return g_predefined.unknown;
}
const Status& Status::GetInvalidArg() {
    return g_predefined.invalidArg;
}
const Status& Status::GetNullPtrArg() {
    return g_predefined.nullPtrArg;
}
const Status& Status::GetNotImplemented() {
    return g_predefined.notImplemented;
}
const Status& Status::GetComError() {
    return g_predefined.comError;
}
const Status& Status::GetAllocFailed() {
    return g_predefined.allocFailed;
}
const Status& Status::GetNotFound() {
    return g_predefined.notFound;
}
const Status& Status::GetLimitExceeded() {
    return g_predefined.limitExceeded;
}
const Status& Status::GetStatusNotSet() {
    return g_predefined.statusNotSet;
}
const Status& Status::GetSystemConfigError() {
    return g_predefined.systemConfigError;
}
const Status& Status::GetSystemAccessDenied() {
    return g_predefined.systemAccessDenied;
}
const Status& Status::GetOutOfMemory() {
    return g_predefined.outOfMemory;
}
const Status& Status::GetSyntaxError() {
    return g_predefined.syntaxError;
}
const Status& Status::GetIncomplete() {
    return g_predefined.incomplete;
}
const Status& Status::GetNotInitialized() {
    return g_predefined.notInitialized;
}
const Status& Status::GetUserCancelledAction() {
    return g_predefined.userCancelledAction;
}
const Status& Status::GetStatusPrimaryKeyValueRef() {
    return g_predefined.primaryKeyValueRef;
}

} // namespace Util
