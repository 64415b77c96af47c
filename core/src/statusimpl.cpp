#include "Util/Status.h"

#include "core/src/spinlock.h"

#include <boost/any.hpp>

namespace Util {

StatusImpl::StatusImpl() = default;

StatusImpl::StatusImpl(long code, const char* format)
    : m_statusCode(static_cast<std::int32_t>(code)), m_formatStr(TString(format)) {}

StatusImpl::StatusImpl(const StatusImpl& other)
    : AttributeSet(other), m_statusCode(other.m_statusCode), m_formatStr(other.m_formatStr),
      m_messageStr(other.m_messageStr),
      m_messageReady(other.m_messageReady.load(std::memory_order_acquire)) {}

StatusImpl& StatusImpl::operator=(const StatusImpl& other) {
    if (this != &other) {
        m_statusCode = other.m_statusCode;
        m_formatStr = other.m_formatStr;
        m_messageStr = other.m_messageStr;
        m_messageReady.store(other.m_messageReady.load(std::memory_order_acquire),
                             std::memory_order_release);
    }
    return *this;
}

StatusImpl::~StatusImpl() = default;

void StatusImpl::PrepFormatStr() {
    if (!m_formatStr)
        m_formatStr.emplace();
}

void StatusImpl::PrepMessageStr() {
    if (!m_messageStr)
        m_messageStr.emplace();
}

const TString& StatusImpl::GetFormatStr() {
    if (!m_formatStr) {
        Detail::SpinGuard guard(m_prepLock);
        PrepFormatStr();
    }
    return *m_formatStr;
}

void StatusImpl::SetFormatStr(const TString& format) {
    PrepFormatStr();
    *m_formatStr = format;
    if (m_messageStr && !m_messageStr->IsEmpty())
        m_messageStr->Empty();
    m_messageReady.store(false, std::memory_order_release);
}

void StatusImpl::SetFormatStr(const char* format) {
    SetFormatStr(TString(format));
}

const TString& StatusImpl::GetStatusMessage() {
    // Statuses sharing this implementation may read it from several threads at once; the first
    // reader expands, the others wait for it and then read the cache without locking.
    if (!m_messageReady.load(std::memory_order_acquire)) {
        Detail::SpinGuard guard(m_prepLock);
        if (!m_messageReady.load(std::memory_order_relaxed)) {
            PrepFormatStr();
            PrepMessageStr();
            if (m_messageStr->IsEmpty())
                ExpandMessage();
            m_messageReady.store(true, std::memory_order_release);
        }
    }
    return *m_messageStr;
}

void StatusImpl::ExpandMessage() {
    const TString& format = *m_formatStr;
    TString& message = *m_messageStr;
    if (format.IsEmpty() || format.Find('%') == TString::npos) {
        message = format;
        return;
    }
    const char* p = format.c_str();
    std::string token;
    TString value;
    while (*p != '\0') {
        while (*p == '%')
            ++p;
        const char* start = p;
        while (*p != '\0' && *p != '%')
            ++p;
        if (p == start)
            break;
        token.assign(start, static_cast<std::size_t>(p - start));
        bool found = false;
        try {
            found = GetStringAttribute(token.c_str(), value) && !value.IsEmpty();
        } catch (const boost::bad_any_cast&) {
            // A value with no text form shows its name, like an absent one.
            found = false;
        }
        if (found)
            message += value;
        else
            message.Append(token.data(), token.size());
    }
}

void StatusImpl::Reset() {
    m_statusCode = 0;
    m_formatStr.reset();
    m_messageStr.reset();
    m_messageReady.store(false, std::memory_order_release);
    if (GetAttributeCount() != 0)
        ClearAttributes();
}

void StatusImpl::AttributeHasChanged() {
    m_messageStr.reset();
    m_messageReady.store(false, std::memory_order_release);
}

} // namespace Util
