// Util::Guid: a 16-byte globally unique identifier (the Win32 GUID layout) with a valid flag
// and a cached text form. Renew makes a new random identifier; assigning text parses the
// 36-character form 8-4-4-4-12 (hexadecimal of either case, optionally inside braces). The text
// form is lower case, without braces, or "error - object not valid" for an invalid identifier.
// A default-constructed Guid is invalid until Renew or an assignment. Failures show in the
// valid flag and the reported status; nothing throws. One object is used by one thread at a
// time (the text is cached on first use, also through const access).
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/TString.h"
#include "Util/Win32Types.h"

namespace Util {

class ZTUTIL_API Guid {
public:
    Guid();
    Guid(const GUID& guid);
    Guid(const Guid& other);
    explicit Guid(const TString& text);
    ~Guid();

    Guid& operator=(const GUID& guid);
    Guid& operator=(const Guid& other);
    // Parses the text; the identifier is valid only when the text is a well-formed identifier.
    Guid& operator=(const TString& text);

    bool operator==(const Guid& other) const;
    bool operator!=(const Guid& other) const { return !(*this == other); }
    bool operator==(const GUID& other) const;
    bool operator!=(const GUID& other) const { return !(*this == other); }

    operator TString() const;
    operator const char*() const;

    // Makes a new identifier; the status tells whether the system could provide one.
    Status Renew();
    bool IsValid() const { return m_bValid; }
    const GUID& GetGuid() const { return m_guid; }

    static const char* const kInvalidText;

protected:
    void Clear();
    void GenerateString() const;

private:
    GUID m_guid;
    mutable TString m_strGuid;
    bool m_bValid = false;
};

} // namespace Util
