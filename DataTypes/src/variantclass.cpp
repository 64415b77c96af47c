#include <cstring>
#include <cwchar>

#include "Util/MemoryManager.h"
#include "Util/Variant.h"

namespace Util {

Variant::Variant(const Variant& other) {
    Reset();
    CopyFrom(other.m_data);
}

Variant::Variant(Variant&& other) noexcept : m_data(other.m_data) {
    other.Reset();
}

Variant::Variant(const __util_Variant& other) {
    Reset();
    CopyFrom(other);
}

Variant::Variant(const __util_Variant* other) {
    Reset();
    if (other != nullptr)
        CopyFrom(*other);
}

Variant::Variant(__util_Variant& other, bool attach) {
    Reset();
    if (attach)
        Attach(other);
    else
        CopyFrom(other);
}

Variant::Variant(unsigned short value, VariantType type) noexcept {
    Reset();
    if (type == UTIL_VT_USHORT || type == UTIL_VT_WCHAR)
        SetUnsigned(type, value);
}

Variant::Variant(double value) noexcept {
    m_data.vt = UTIL_VT_DOUBLE;
    m_data.dblVal = value;
}

Variant::Variant(bool value) noexcept {
    Reset();
    m_data.vt = UTIL_VT_BOOL;
    m_data.boolVal = value;
}

Variant::Variant(const char* value) {
    Reset();
    SetNarrow(value);
}

Variant::Variant(const wchar_t* value) {
    Reset();
    SetWide(value);
}

void Variant::SetNarrow(const char* value) {
    if (value == nullptr)
        return;
    const std::size_t length = std::strlen(value);
    char* text = static_cast<char*>(GetMemoryManager().Allocate(length + 1));
    if (text == nullptr)
        return;
    std::memcpy(text, value, length + 1);
    m_data.vt = UTIL_VT_STRING;
    m_data.pszVal = text;
}

void Variant::SetWide(const wchar_t* value) {
    if (value == nullptr)
        return;
    const std::size_t length = std::wcslen(value);
    auto* text = static_cast<wchar_t*>(GetMemoryManager().Allocate((length + 1) * sizeof(wchar_t)));
    if (text == nullptr)
        return;
    std::wmemcpy(text, value, length + 1);
    m_data.vt = UTIL_VT_WSTRING;
    m_data.pwszVal = text;
}

void Variant::CopyFrom(const __util_Variant& other) {
    if (other.vt == UTIL_VT_STRING)
        SetNarrow(other.pszVal);
    else if (other.vt == UTIL_VT_WSTRING)
        SetWide(other.pwszVal);
    else
        m_data = other;
}

void Variant::FreeString() {
    if (m_data.vt == UTIL_VT_STRING)
        GetMemoryManager().Free(m_data.pszVal);
    else if (m_data.vt == UTIL_VT_WSTRING)
        GetMemoryManager().Free(m_data.pwszVal);
    Reset();
}

Variant& Variant::AssignFrom(const Variant& other) {
    if (this != &other) {
        Clear();
        CopyFrom(other.m_data);
    }
    return *this;
}

Variant& Variant::operator=(const __util_Variant& other) {
    if (&other != &m_data) {
        // other may point into a string we hold (a shallow view of ourselves): copy first.
        Variant copy(other);
        *this = std::move(copy);
    }
    return *this;
}

Variant& Variant::operator=(const __util_Variant* other) {
    if (other == nullptr) {
        Clear();
        return *this;
    }
    return *this = *other;
}

#define ZT_VARIANT_ASSIGN(Type)                                                                    \
    Variant& Variant::operator=(Type value) {                                                      \
        Clear();                                                                                   \
        *this = Variant(value);                                                                    \
        return *this;                                                                              \
    }
ZT_VARIANT_ASSIGN(int)
ZT_VARIANT_ASSIGN(short)
ZT_VARIANT_ASSIGN(long)
ZT_VARIANT_ASSIGN(long long)
ZT_VARIANT_ASSIGN(char)
ZT_VARIANT_ASSIGN(unsigned int)
ZT_VARIANT_ASSIGN(unsigned char)
ZT_VARIANT_ASSIGN(unsigned short)
ZT_VARIANT_ASSIGN(unsigned long)
ZT_VARIANT_ASSIGN(unsigned long long)
ZT_VARIANT_ASSIGN(double)
ZT_VARIANT_ASSIGN(bool)
#undef ZT_VARIANT_ASSIGN

Variant& Variant::operator=(const char* value) {
    Variant copy(value); // value may be our own string
    *this = std::move(copy);
    return *this;
}

Variant& Variant::operator=(const wchar_t* value) {
    Variant copy(value);
    *this = std::move(copy);
    return *this;
}

template <typename T> T Variant::ConvertTo(VariantType type) const {
    __util_Variant converted;
    converted.vt = UTIL_VT_EMPTY;
    converted.llVal = 0;
    if (!VariantChangeType(&converted, &m_data, type))
        return T();
    if (type == UTIL_VT_DOUBLE)
        return static_cast<T>(converted.dblVal);
    if (type == UTIL_VT_BOOL)
        return static_cast<T>(converted.boolVal);
    if ((type & UTIL_VT_UNSIGNED_CLASS) != 0)
        return static_cast<T>(converted.ullVal);
    return static_cast<T>(converted.llVal);
}

Variant::operator char() const {
    return ConvertTo<char>(UTIL_VT_CHAR);
}
Variant::operator unsigned char() const {
    return ConvertTo<unsigned char>(UTIL_VT_UCHAR);
}
Variant::operator short() const {
    return ConvertTo<short>(UTIL_VT_SHORT);
}
Variant::operator unsigned short() const {
    return ConvertTo<unsigned short>(UTIL_VT_USHORT);
}
Variant::operator int() const {
    return ConvertTo<int>(UTIL_VT_INT);
}
Variant::operator unsigned int() const {
    return ConvertTo<unsigned int>(UTIL_VT_UINT);
}
Variant::operator long() const {
    return ConvertTo<long>(UTIL_VT_LONG);
}
Variant::operator unsigned long() const {
    return ConvertTo<unsigned long>(UTIL_VT_ULONG);
}
Variant::operator long long() const {
    return ConvertTo<long long>(UTIL_VT_INT64);
}
Variant::operator unsigned long long() const {
    return ConvertTo<unsigned long long>(UTIL_VT_UINT64);
}
Variant::operator double() const {
    return ConvertTo<double>(UTIL_VT_DOUBLE);
}
Variant::operator bool() const {
    return ConvertTo<bool>(UTIL_VT_BOOL);
}

bool Variant::operator==(const __util_Variant& other) const {
    if (m_data.vt != other.vt)
        return false;
    switch (m_data.vt) {
    case UTIL_VT_EMPTY:
        return true;
    case UTIL_VT_DOUBLE:
        return m_data.dblVal == other.dblVal;
    case UTIL_VT_BOOL:
        return m_data.boolVal == other.boolVal;
    case UTIL_VT_STRING:
        return std::strcmp(m_data.pszVal, other.pszVal) == 0;
    case UTIL_VT_WSTRING:
        return std::wcscmp(m_data.pwszVal, other.pwszVal) == 0;
    default:
        return m_data.llVal == other.llVal;
    }
}

void Variant::Attach(__util_Variant& other) {
    if (&other == &m_data)
        return;
    Clear();
    m_data = other;
    other.vt = UTIL_VT_EMPTY;
    other.llVal = 0;
}

__util_Variant Variant::Detach() {
    __util_Variant out = m_data;
    Reset();
    return out;
}

bool Variant::ChangeType(VariantType type, const __util_Variant* source) {
    return VariantChangeType(&m_data, source != nullptr ? source : &m_data, type);
}

bool Variant::GetString(TString& text) const {
    __util_Variant converted;
    converted.vt = UTIL_VT_EMPTY;
    converted.llVal = 0;
    if (!VariantChangeType(&converted, &m_data, UTIL_VT_STRING)) {
        text = "";
        return false;
    }
    text = converted.pszVal;
    GetMemoryManager().Free(converted.pszVal);
    return true;
}

bool Variant::IsIntegerNumber() const {
    const std::uint32_t cls = m_data.vt & 0xFF00u;
    return cls == UTIL_VT_SIGNED_CLASS || cls == UTIL_VT_UNSIGNED_CLASS;
}

bool Variant::IsRealNumber() const {
    return (m_data.vt & 0xFF00u) == UTIL_VT_REAL_CLASS;
}

bool Variant::IsString() const {
    return (m_data.vt & 0xFF00u) == UTIL_VT_STRING_CLASS;
}

} // namespace Util
