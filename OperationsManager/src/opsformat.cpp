#include "OperationsManager/src/opsformat.h"

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace Util {
namespace OpsDetail {

namespace {

// The conversions diagnostic texts use nearly always, with no flags, width or precision: %d %i
// %u %x %X with no, "l", "ll" or "z" length, %s, %c and %%. Formatting them here costs a tenth of
// the C library's vsnprintf; any other format returns false and vsnprintf does the whole text,
// so the result is always the C library's.
class SimpleFormatter {
public:
    SimpleFormatter(char* buffer, std::size_t size) : m_p(buffer), m_end(buffer + size - 1) {}

    // False when the format needs vsnprintf or the text does not fit; otherwise the text is in
    // the buffer, terminated, and its length is returned in length.
    bool Format(const char* format, va_list args, std::size_t& length) {
        char* const start = m_p;
        for (const char* f = format;;) {
            const char* percent = std::strchr(f, '%');
            if (!Put(f, percent ? static_cast<std::size_t>(percent - f) : std::strlen(f)))
                return false;
            if (!percent)
                break;
            f = percent + 1;
            enum { kInt, kLong, kLongLong, kSize } width = kInt;
            if (*f == 'l') {
                ++f;
                width = kLong;
                if (*f == 'l') {
                    ++f;
                    width = kLongLong;
                }
            } else if (*f == 'z') {
                ++f;
                width = kSize;
            }
            const char conversion = *f++;
            bool ok;
            switch (conversion) {
            case 'd':
            case 'i':
                ok = width == kInt    ? PutNumber(va_arg(args, int), 10)
                     : width == kLong ? PutNumber(va_arg(args, long), 10)
                     : width == kSize ? PutNumber(va_arg(args, std::ptrdiff_t), 10)
                                      : PutNumber(va_arg(args, long long), 10);
                break;
            case 'u':
            case 'x':
            case 'X': {
                const int base = conversion == 'u' ? 10 : 16;
                char* const digits = m_p;
                ok = width == kInt    ? PutNumber(va_arg(args, unsigned), base)
                     : width == kLong ? PutNumber(va_arg(args, unsigned long), base)
                     : width == kSize ? PutNumber(va_arg(args, std::size_t), base)
                                      : PutNumber(va_arg(args, unsigned long long), base);
                if (ok && conversion == 'X')
                    for (char* c = digits; c != m_p; ++c)
                        if (*c >= 'a' && *c <= 'f')
                            *c = static_cast<char>(*c - 'a' + 'A');
                break;
            }
            case 's':
                if (width != kInt)
                    return false; // %ls is wide text
                else {
                    const char* text = va_arg(args, const char*);
                    if (text == nullptr)
                        text = "(null)"; // as glibc prints it
                    ok = Put(text, std::strlen(text));
                }
                break;
            case 'c':
                if (width != kInt)
                    return false;
                else {
                    const char c = static_cast<char>(va_arg(args, int));
                    ok = Put(&c, 1);
                }
                break;
            case '%':
                if (width != kInt)
                    return false;
                ok = Put("%", 1);
                break;
            default:
                return false;
            }
            if (!ok)
                return false;
        }
        *m_p = '\0';
        length = static_cast<std::size_t>(m_p - start);
        return true;
    }

private:
    bool Put(const char* text, std::size_t length) {
        if (length > static_cast<std::size_t>(m_end - m_p))
            return false;
        std::memcpy(m_p, text, length);
        m_p += length;
        return true;
    }

    template <typename Number> bool PutNumber(Number value, int base) {
        const std::to_chars_result result = std::to_chars(m_p, m_end, value, base);
        if (result.ec != std::errc())
            return false;
        m_p = result.ptr;
        return true;
    }

    char* m_p;
    char* const m_end; // the last byte, kept for the terminator
};

} // namespace

std::string FormatV(const char* format, va_list args) {
    const FormattedText text(format, args);
    return std::string(text.c_str());
}

FormattedText::FormattedText(const char* format, va_list args) {
    m_inline[0] = '\0';
    if (format == nullptr)
        return;
    va_list copy;
    va_copy(copy, args);
    std::size_t length = 0;
    const bool simple = SimpleFormatter(m_inline, sizeof m_inline).Format(format, copy, length);
    va_end(copy);
    if (simple)
        return;
    // Only long texts pay for a second pass.
    va_copy(copy, args);
    const int needed = std::vsnprintf(m_inline, sizeof m_inline, format, copy);
    va_end(copy);
    if (needed < 0) {
        m_pText = format;
        return;
    }
    if (static_cast<size_t>(needed) < sizeof m_inline)
        return;
    m_long.resize(static_cast<size_t>(needed) + 1);
    va_copy(copy, args);
    std::vsnprintf(&m_long[0], m_long.size(), format, copy);
    va_end(copy);
    m_long.resize(static_cast<size_t>(needed));
    m_pText = m_long.c_str();
}

} // namespace OpsDetail
} // namespace Util
