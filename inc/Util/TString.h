// Util::TString: the library's 8-bit string, TString<char, TStringAllocator<char>>.
//
// A value type with the usual copy and move semantics. It converts implicitly to
// const char* (never null: an empty string gives ""), compares by bytes, and formats
// printf-style with Format / FormatV (bounded: the result is sized first, never overflows).
// Most interfaces take const char* and return or fill a TString. One thread at a time.
#pragma once

#include "Util/Compiler.h"
#include "Util/Export.h"

#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string>

namespace Norvane {
namespace Utilities {

template <class T> struct TStringAllocator : std::allocator<T> {
    using std::allocator<T>::allocator;
    template <class U> struct rebind { using other = TStringAllocator<U>; };
};

// printf-style formatting into a std::string; the string is replaced, never overrun.
ZTUTIL_API void FormatStringV(std::string& out, const char* format, va_list args);

template <class T, class A> class TString {
public:
    using string_type = std::basic_string<T, std::char_traits<T>, A>;
    static constexpr std::size_t npos = string_type::npos;

    TString() = default;
    TString(const T* text) : m_str(text != nullptr ? text : "") {}
    TString(const T* text, std::size_t length) : m_str(text, length) {}
    TString(std::size_t count, T ch) : m_str(count, ch) {}
    TString(const std::basic_string<T>& text) : m_str(text.data(), text.size()) {}
    explicit TString(string_type text) : m_str(std::move(text)) {}
    TString(const TString&) = default;
    TString(TString&&) noexcept = default;
    TString& operator=(const TString&) = default;
    TString& operator=(TString&&) noexcept = default;
    TString& operator=(const T* text) {
        if (text == nullptr)
            m_str.clear();
        else
            m_str.assign(text);
        return *this;
    }

    std::size_t GetLength() const { return m_str.size(); }
    std::size_t size() const { return m_str.size(); }
    std::size_t length() const { return m_str.size(); }
    bool IsEmpty() const { return m_str.empty(); }
    bool empty() const { return m_str.empty(); }
    void Empty() { m_str.clear(); }
    void clear() { m_str.clear(); }

    const T* c_str() const { return m_str.c_str(); }
    const T* GetString() const { return m_str.c_str(); }
    operator const T*() const { return m_str.c_str(); }
    const string_type& str() const { return m_str; }
    string_type& str() { return m_str; }
    std::basic_string<T> ToStdString() const {
        return std::basic_string<T>(m_str.data(), m_str.size());
    }

    T GetAt(std::size_t i) const { return m_str[i]; }
    T& operator[](std::size_t i) { return m_str[i]; }
    T operator[](std::size_t i) const { return m_str[i]; }

    TString& Append(const T* text) {
        if (text != nullptr)
            m_str.append(text);
        return *this;
    }
    TString& Append(const T* text, std::size_t length) {
        m_str.append(text, length);
        return *this;
    }
    TString& Append(const TString& other) {
        m_str.append(other.m_str);
        return *this;
    }
    TString& operator+=(const TString& other) { return Append(other); }
    TString& operator+=(const T* text) { return Append(text); }
    TString& operator+=(T ch) {
        m_str.push_back(ch);
        return *this;
    }

    std::size_t Find(const T* text, std::size_t from = 0) const { return m_str.find(text, from); }
    std::size_t Find(T ch, std::size_t from = 0) const { return m_str.find(ch, from); }
    TString Left(std::size_t count) const { return TString(m_str.substr(0, count)); }
    TString Mid(std::size_t first, std::size_t count = npos) const {
        return first >= m_str.size() ? TString() : TString(m_str.substr(first, count));
    }
    TString Right(std::size_t count) const {
        return count >= m_str.size() ? *this : TString(m_str.substr(m_str.size() - count));
    }

    // Replaces the contents with the printf-style expansion of format.
    void Format(const char* format, ...) ZT_PRINTF_FORMAT(2, 3) {
        va_list args;
        va_start(args, format);
        FormatV(format, args);
        va_end(args);
    }
    void FormatV(const char* format, va_list args) {
        static_assert(sizeof(T) == 1, "formatting is for 8-bit strings");
        std::string out;
        FormatStringV(out, format, args);
        m_str.assign(out.data(), out.size());
    }

    int Compare(const T* other) const {
        int c = m_str.compare(other != nullptr ? other : "");
        return c < 0 ? -1 : (c > 0 ? 1 : 0);
    }

    friend bool operator==(const TString& a, const TString& b) { return a.m_str == b.m_str; }
    friend bool operator!=(const TString& a, const TString& b) { return a.m_str != b.m_str; }
    friend bool operator<(const TString& a, const TString& b) { return a.m_str < b.m_str; }
    friend bool operator>(const TString& a, const TString& b) { return a.m_str > b.m_str; }
    friend bool operator<=(const TString& a, const TString& b) { return a.m_str <= b.m_str; }
    friend bool operator>=(const TString& a, const TString& b) { return a.m_str >= b.m_str; }
    friend bool operator==(const TString& a, const T* b) { return a.Compare(b) == 0; }
    friend bool operator!=(const TString& a, const T* b) { return a.Compare(b) != 0; }
    friend bool operator==(const T* a, const TString& b) { return b.Compare(a) == 0; }
    friend bool operator!=(const T* a, const TString& b) { return b.Compare(a) != 0; }
    friend TString operator+(TString a, const TString& b) { return a.Append(b); }
    friend TString operator+(TString a, const T* b) { return a.Append(b); }

private:
    string_type m_str;
};

} // namespace Utilities
} // namespace Norvane

namespace Util {
typedef Norvane::Utilities::TString<char, Norvane::Utilities::TStringAllocator<char>> TString;
} // namespace Util
