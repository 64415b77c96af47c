// Events from this module carry its source text, without the extension.
#define ZT_SOURCE_FILE "DataTypes/src/guid"

#include "Util/Guid.h"

#include "DataTypes/src/guid_platform.h"
#include "DataTypes/src/valuesreporting.h"

#include <cstring>
#include <string>

namespace Util {

const char* const Guid::kInvalidText = "error - object not valid";

Guid::Guid() {
    Clear();
}

Guid::Guid(const GUID& guid) : m_guid(guid), m_bValid(true) {}

Guid::Guid(const Guid& other) = default;

Guid::Guid(const TString& text) {
    Clear();
    *this = text;
}

Guid::~Guid() = default;

Guid& Guid::operator=(const GUID& guid) {
    m_guid = guid;
    m_strGuid.Empty();
    m_bValid = true;
    return *this;
}

Guid& Guid::operator=(const Guid& other) = default;

Guid& Guid::operator=(const TString& text) {
    VALUES_LOCAL_OPS("Util::Guid::operator =",
                     "Util::Guid& Util::Guid::operator =(const Util::TString&)");
    Clear();
    // The identifier between the first "{" and the last "}", when the text has both.
    std::string whole(text.c_str(), text.GetLength());
    std::string::size_type open = whole.find('{');
    std::string::size_type close = whole.rfind('}');
    if (open != std::string::npos && close != std::string::npos && close > open) {
        whole = whole.substr(open + 1, close - open - 1);
    }
    m_bValid = GuidPlatform::FromText(whole.c_str(), m_guid);
    if (!m_bValid) {
        std::memset(&m_guid, 0, sizeof m_guid);
        Status failed = Status::GetFailed();
        failed.SetAttribute("Win32Error", static_cast<long>(GuidPlatform::kInvalidStringUuid));
        (void)VALUES_REPORT(failed);
        return *this;
    }
    (void)VALUES_REPORT(Status::GetSucceeded());
    return *this;
}

bool Guid::operator==(const Guid& other) const {
    return *this == other.m_guid;
}

bool Guid::operator==(const GUID& other) const {
    return std::memcmp(&m_guid, &other, sizeof m_guid) == 0;
}

Guid::operator TString() const {
    GenerateString();
    return m_strGuid;
}

Guid::operator const char*() const {
    GenerateString();
    return m_strGuid.c_str();
}

Status Guid::Renew() {
    VALUES_LOCAL_OPS("Util::Guid::Renew", "Util::Status Util::Guid::Renew()");
    m_strGuid.Empty();
    DWORD error = 0;
    m_bValid = GuidPlatform::Create(m_guid, error);
    if (!m_bValid) {
        std::memset(&m_guid, 0, sizeof m_guid);
        Status failed = Status::GetFailed();
        failed.SetAttribute("Win32Error", static_cast<long>(error));
        return VALUES_REPORT(failed);
    }
    return VALUES_REPORT(Status::GetSucceeded());
}

void Guid::Clear() {
    std::memset(&m_guid, 0, sizeof m_guid);
    m_strGuid.Empty();
    m_bValid = false;
}

void Guid::GenerateString() const {
    if (!m_bValid) {
        m_strGuid = kInvalidText;
        return;
    }
    if (!m_strGuid.IsEmpty()) {
        return;
    }
    std::string text;
    if (GuidPlatform::ToText(m_guid, text)) {
        m_strGuid = TString(text.c_str(), text.size());
    } else {
        m_strGuid = kInvalidText;
    }
}

} // namespace Util
