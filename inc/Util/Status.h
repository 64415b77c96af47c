// Util::Status: the result of nearly every operation of the library.
//
// A status is a small handle to a shared, pooled Util::StatusImpl holding a signed 32-bit code,
// a format text and named attributes. Code >= 0 is success, < 0 failure. Copying a status shares
// the implementation (an atomic reference count); every change first detaches a shared
// implementation (copy on write), and the detached copy keeps code, format and cached message but
// not the attributes. The message is built from the format on first read: the format is split
// at runs of '%', and each piece is replaced by the string attribute of that name when that is
// non-empty (so "Cannot open %FileName%" shows the attribute FileName). The 22 predefined
// statuses (codes -18..3) are built when the library loads and reached through the static
// accessors; they can never be changed through a copy.
//
// Implementations come from the process-wide Util::StatusPool and return to it when the last
// handle drops. A Status object is used by one thread at a time; statuses sharing one
// implementation may be read and dropped from any thread.
//
// Status is [[nodiscard]]: a call whose status is dropped draws a compiler warning. Where
// dropping one is intended (a report whose status only passes through, a best-effort step),
// say so with a cast: `(void)ZT_REPORT(status);`.
#pragma once

#include "Util/AttributeSet.h"
#include "Util/Export.h"
#include "Util/TString.h"

#include <boost/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <optional>

namespace Util {

class StatusPool;

class ZTUTIL_API StatusImpl final : public AttributeSet {
public:
    StatusImpl();
    StatusImpl(long code, const char* format);
    StatusImpl(const StatusImpl& other);
    // Copies code, format and cached message; the attributes stay as they are.
    StatusImpl& operator=(const StatusImpl& other);
    ~StatusImpl();

    bool Succeeded() const { return m_statusCode >= 0; }
    bool Failed() const { return m_statusCode < 0; }
    long GetStatusCode() const { return m_statusCode; }
    void SetStatusCode(long code) { m_statusCode = static_cast<std::int32_t>(code); }

    const TString& GetFormatStr();
    void SetFormatStr(const TString& format);
    void SetFormatStr(const char* format);
    const TString& GetStatusMessage();
    void SetAttributes(const AttributeSet& attributes) { AttributeSet::SetAttributes(attributes); }

    // Code 0, no format, no message, no attributes.
    void Reset();

    void AttributeHasChanged() override;

protected:
    void PrepFormatStr();
    void PrepMessageStr();

private:
    friend class StatusPool;
    friend class Status;

    void ExpandMessage();
    // Reset, then the given code and format, keeping the strings' storage for reuse.
    void Reuse(long code, const char* format);

    std::int32_t m_statusCode = 0;
    std::optional<TString> m_formatStr;
    std::optional<TString> m_messageStr;

    // Pool bookkeeping: the place of this implementation in the pool's list (kNotPooled for
    // one that does not come from the pool), and whether the pool's own reference is lent to
    // the Status handles that use it (see StatusPool). Changed only by the pool, and only while
    // no handle refers to the implementation.
    static constexpr std::uint32_t kNotPooled = UINT32_MAX;
    std::uint32_t m_poolIndex = kNotPooled;
    bool m_lent = false;
    // Guards the lazy creation of the format and message, which happens on reads that may come
    // from several threads sharing this implementation.
    std::atomic<bool> m_prepLock{false};
    std::atomic<bool> m_messageReady{false};
};

class [[nodiscard]] ZTUTIL_API_ATTR Status {
public:
    // Code 0, "Succeeded".
    Status();
    Status(long code, const char* format);
    Status(const Status& other) : m_pImpl(other.m_pImpl) {}
    Status& operator=(const Status& other);
    ~Status() { Release(m_pImpl); }

    bool Succeeded() const { return m_pImpl->Succeeded(); }
    bool Failed() const { return m_pImpl->Failed(); }
    long GetStatusCode() const { return m_pImpl->GetStatusCode(); }
    // |code| / 1000 * 1000: the block of 1000 codes the status belongs to.
    long GetStatusCodeComponentOffset() const;
    const TString& GetFormatStr() const { return m_pImpl->GetFormatStr(); }
    const TString& GetStatusMessage() const { return m_pImpl->GetStatusMessage(); }

    void SetStatusCode(long code);
    void SetFormatStr(const TString& format);

    void SetAttribute(const char* name, const char* value);
    void SetAttribute(const char* name, const TString& value);
    void SetAttribute(const char* name, short value);
    void SetAttribute(const char* name, int value);
    void SetAttribute(const char* name, long value);
    void SetAttribute(const char* name, long long value);
    void SetAttribute(const char* name, double value);
    void SetAttribute(const char* name, bool value);
    void SetAttribute(const char* name, const boost::any& value);
    void SetAttributes(const AttributeSet& attributes);
    void ClearAttribute(const char* name);
    void ClearAttributes();

    bool AttributeExists(const char* name) const { return m_pImpl->AttributeExists(name); }
    bool GetStringAttribute(const char* name, TString& value) const {
        return m_pImpl->GetStringAttribute(name, value);
    }
    bool GetLongAttribute(const char* name, long& value) const {
        return m_pImpl->GetLongAttribute(name, value);
    }
    bool GetDoubleAttribute(const char* name, double& value) const {
        return m_pImpl->GetDoubleAttribute(name, value);
    }
    bool GetBoolAttribute(const char* name, bool& value) const {
        return m_pImpl->GetBoolAttribute(name, value);
    }
    bool GetAnyAttribute(const char* name, boost::any& value) const {
        return m_pImpl->GetAnyAttribute(name, value);
    }

    // How many references the implementation has, the pool's own included (for diagnostics).
    long GetUseCount() const { return m_pImpl.use_count() + (m_pImpl->m_lent ? 1 : 0); }

    static const Status& GetSucceeded();
    static const Status& GetNoValue();
    static const Status& GetResultPending();
    static const Status& GetNotUsed();
    static const Status& GetFailed();
    static const Status& GetUnknown();
    static const Status& GetInvalidArg();
    static const Status& GetNullPtrArg();
    static const Status& GetNotImplemented();
    static const Status& GetComError();
    static const Status& GetAllocFailed();
    static const Status& GetNotFound();
    static const Status& GetLimitExceeded();
    static const Status& GetStatusNotSet();
    static const Status& GetSystemConfigError();
    static const Status& GetSystemAccessDenied();
    static const Status& GetOutOfMemory();
    static const Status& GetSyntaxError();
    static const Status& GetIncomplete();
    static const Status& GetNotInitialized();
    static const Status& GetUserCancelledAction();
    static const Status& GetStatusPrimaryKeyValueRef();

private:
    explicit Status(const boost::shared_ptr<StatusImpl>& impl) : m_pImpl(impl) {}

    static StatusPool* Pool();
    // Detaches a shared implementation before a change.
    void CopyIfShared();
    // Drops one reference, handing the implementation back to the pool when it becomes free.
    static void Release(boost::shared_ptr<StatusImpl>& impl);

    boost::shared_ptr<StatusImpl> m_pImpl;
};

} // namespace Util

#include "Util/StatusHistory.h"
#include "Util/StatusPool.h"
