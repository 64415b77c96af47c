// Util::Variant: the library's tagged value, and Util::__util_Variant, the plain structure behind
// it.
//
// Contract: a Variant holds nothing (empty), one C++ integer type, a double, a bool, or a narrow or
// wide string that it owns. Strings are duplicated on construction and assignment and are
// allocated and freed through Util::GetMemoryManager(); a null string pointer gives an empty
// variant. The unsigned short constructor takes the type to give the value, which must be
// UTIL_VT_USHORT or UTIL_VT_WCHAR; with any other type the variant stays empty. Conversions
// between kinds go through Util::VariantChangeType, which never throws: a conversion that would
// lose data (a negative value to an unsigned type, a value too large for the target) returns
// false, leaves the destination empty and reports "Loss of data occured in a numeric downcast
// operation" as an operations-manager message. The conversion operators return 0 (false) when
// their conversion fails. Integer ranges are those of the C++ type asked for on the platform at
// hand (long is 64-bit on LP64 systems).
//
// Strings convert between narrow and wide one character at a time: a wide character up to U+00FF
// becomes the byte of the same value and any other becomes '?', and each narrow byte widens to
// the character of the same value (Latin-1). Integers of every width and signedness are written
// as signed 64-bit decimals, doubles with "%.12g", bools as "true"/"false".
//
// Conversion to and from the OLE VARIANT exists on Windows only (ConvertVariantToUtilVariant,
// ConvertUtilVariantToVariant, declared when _WIN32 is defined).
//
// A Variant is a value: one thread at a time may use a given object.
#pragma once

#include <cstdint>

#include "Util/Export.h"
#include "Util/TString.h"

namespace Util {

enum VariantType : std::uint32_t {
    UTIL_VT_EMPTY = 0x000,
    UTIL_VT_INT = 0x101,
    UTIL_VT_SHORT = 0x102,
    UTIL_VT_LONG = 0x103,
    UTIL_VT_INT64 = 0x104,
    UTIL_VT_CHAR = 0x105,
    UTIL_VT_UINT = 0x201,
    UTIL_VT_UCHAR = 0x202,
    UTIL_VT_USHORT = 0x203,
    UTIL_VT_ULONG = 0x204,
    UTIL_VT_UINT64 = 0x205,
    UTIL_VT_WCHAR = 0x206,
    UTIL_VT_DOUBLE = 0x401,
    UTIL_VT_BOOL = 0x801,
    UTIL_VT_STRING = 0x2001,
    UTIL_VT_WSTRING = 0x2002,

    // Class bits.
    UTIL_VT_SIGNED_CLASS = 0x100,
    UTIL_VT_UNSIGNED_CLASS = 0x200,
    UTIL_VT_REAL_CLASS = 0x400,
    UTIL_VT_BOOL_CLASS = 0x800,
    UTIL_VT_STRING_CLASS = 0x2000
};

// The raw value: a 32-bit type tag followed by 8 bytes. Integers are widened to 64 bits (signed
// or unsigned by their class); a bool lives in the first byte; strings are pointers.
struct __util_Variant {
    VariantType vt;
    union {
        std::int64_t llVal;
        std::uint64_t ullVal;
        double dblVal;
        bool boolVal;
        char* pszVal;
        wchar_t* pwszVal;
    };
};

// Converts source into destination as type. destination and source may be the same structure.
// A string already in destination (when it is not the source) is freed first. Returns false for
// a null argument, an unknown type, or a conversion that loses data; destination is then empty.
ZTUTIL_API bool VariantChangeType(__util_Variant* destination, const __util_Variant* source,
                                  VariantType type);

class ZTUTIL_API Variant {
public:
    Variant() noexcept { Reset(); }
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept;
    Variant(const __util_Variant& other);
    Variant(const __util_Variant* other);
    // attach: take the structure over (other is emptied) instead of copying it.
    Variant(__util_Variant& other, bool attach);

    Variant(int value) noexcept { SetSigned(UTIL_VT_INT, value); }
    Variant(short value) noexcept { SetSigned(UTIL_VT_SHORT, value); }
    Variant(long value) noexcept { SetSigned(UTIL_VT_LONG, value); }
    Variant(long long value) noexcept { SetSigned(UTIL_VT_INT64, value); }
    Variant(char value) noexcept { SetSigned(UTIL_VT_CHAR, value); }
    Variant(unsigned int value) noexcept { SetUnsigned(UTIL_VT_UINT, value); }
    Variant(unsigned char value) noexcept { SetUnsigned(UTIL_VT_UCHAR, value); }
    Variant(unsigned short value, VariantType type = UTIL_VT_USHORT) noexcept;
    Variant(unsigned long value) noexcept { SetUnsigned(UTIL_VT_ULONG, value); }
    Variant(unsigned long long value) noexcept { SetUnsigned(UTIL_VT_UINT64, value); }
    Variant(double value) noexcept;
    Variant(bool value) noexcept;
    Variant(const char* value);
    Variant(const wchar_t* value);

    ~Variant() {
        if ((m_data.vt & UTIL_VT_STRING_CLASS) != 0)
            FreeString();
    }

    Variant& operator=(const Variant& other) {
        // Values without a string are copied in place; strings take the long way.
        if (((m_data.vt | other.m_data.vt) & UTIL_VT_STRING_CLASS) == 0) {
            m_data = other.m_data;
            return *this;
        }
        return AssignFrom(other);
    }
    Variant& operator=(Variant&& other) noexcept {
        if (this != &other) {
            Clear();
            m_data = other.m_data;
            other.Reset();
        }
        return *this;
    }
    Variant& operator=(const __util_Variant& other);
    Variant& operator=(const __util_Variant* other);
    Variant& operator=(int value);
    Variant& operator=(short value);
    Variant& operator=(long value);
    Variant& operator=(long long value);
    Variant& operator=(char value);
    Variant& operator=(unsigned int value);
    Variant& operator=(unsigned char value);
    Variant& operator=(unsigned short value); // as UTIL_VT_USHORT
    Variant& operator=(unsigned long value);
    Variant& operator=(unsigned long long value);
    Variant& operator=(double value);
    Variant& operator=(bool value);
    Variant& operator=(const char* value);
    Variant& operator=(const wchar_t* value);

    // Each converts a copy with VariantChangeType; 0 / false when that fails.
    operator char() const;
    operator unsigned char() const;
    operator short() const;
    operator unsigned short() const;
    operator int() const;
    operator unsigned int() const;
    operator long() const;
    operator unsigned long() const;
    operator long long() const;
    operator unsigned long long() const;
    operator double() const;
    operator bool() const;

    // Same type and same value; strings compare by content.
    bool operator==(const __util_Variant& other) const;
    bool operator!=(const __util_Variant& other) const { return !(*this == other); }

    // A shallow view of the structure: its string still belongs to this variant.
    operator __util_Variant() const { return m_data; }
    const __util_Variant& GetData() const { return m_data; }
    __util_Variant* GetAddress() { return &m_data; }

    VariantType GetType() const { return m_data.vt; }

    // Takes other over (freeing what this held); other is left empty.
    void Attach(__util_Variant& other);
    // Hands the structure (and its string) to the caller and leaves this variant empty.
    __util_Variant Detach();
    void Clear() {
        if ((m_data.vt & UTIL_VT_STRING_CLASS) != 0)
            FreeString();
        Reset();
    }

    // Converts in place, or (with source) replaces this value by source converted to type.
    bool ChangeType(VariantType type, const __util_Variant* source = nullptr);

    // The value as narrow text; false (and an empty text) when it cannot be converted.
    bool GetString(TString& text) const;

    bool IsIntegerNumber() const;
    bool IsRealNumber() const;
    bool IsString() const;
    bool IsEmpty() const { return m_data.vt == UTIL_VT_EMPTY; }

private:
    void Reset() noexcept {
        m_data.vt = UTIL_VT_EMPTY;
        m_data.llVal = 0;
    }
    void SetSigned(VariantType type, std::int64_t value) noexcept {
        m_data.vt = type;
        m_data.llVal = value;
    }
    void SetUnsigned(VariantType type, std::uint64_t value) noexcept {
        m_data.vt = type;
        m_data.ullVal = value;
    }
    void CopyFrom(const __util_Variant& other);
    void FreeString();
    Variant& AssignFrom(const Variant& other);
    void SetNarrow(const char* value);
    void SetWide(const wchar_t* value);
    template <typename T> T ConvertTo(VariantType type) const;

    __util_Variant m_data;
};

} // namespace Util

#if defined(_WIN32)
#include <oaidl.h>

namespace Util {
// OLE VARIANT exchange (Windows only). The integer, real, bool and string kinds map to VT_I1 ...
// VT_UI8, VT_R8, VT_BOOL and VT_BSTR; other VARIANT kinds fail (false, target empty).
ZTUTIL_API bool ConvertVariantToUtilVariant(const VARIANT& source, Variant& target);
ZTUTIL_API bool ConvertUtilVariantToVariant(const Variant& source, VARIANT& target);
} // namespace Util
#endif
