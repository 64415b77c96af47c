// Events from this module carry its source text, without the extension.
#define ZT_SOURCE_FILE "DataTypes/src/baltypeutils"

// Number-to-text formatting: fixed-point text with a given number of significant digits, or
// exponent notation when that does not fit the caller's buffer.
#include "Util/BalTypeUtils.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "DataTypes/src/baltypeutils_ops.h"

namespace {
constexpr size_t kFormatSize = 6; // "%.NNe" and its terminator
constexpr size_t kWorkSize = 50;

// Bounded formatting that fails rather than truncates: on overflow the text is left empty.
bool FormatBounded(char* out, size_t size, const char* format, ...) {
    if (size == 0) {
        return false;
    }
    va_list args;
    va_start(args, format);
    int written = std::vsnprintf(out, size, format, args);
    va_end(args);
    if (written < 0 || static_cast<size_t>(written) >= size) {
        out[0] = '\0';
        return false;
    }
    return true;
}

void FormatExponent(char* work, double value, int precision) {
    char format[kFormatSize];
    if (!FormatBounded(format, sizeof format, "%%.%de", precision < 0 ? 0 : precision)) {
        work[0] = '\0';
        return;
    }
    FormatBounded(work, kWorkSize, format, value);
}

void TrimTrailing(char* text, char c) {
    size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == c) {
        text[--length] = '\0';
    }
}

// Copies as much of text as fits, always terminated.
void CopyTruncated(char* buffer, uint64_t bufferSize, const char* text) {
    size_t length = std::strlen(text);
    if (length >= bufferSize) {
        length = static_cast<size_t>(bufferSize - 1);
    }
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
}
} // namespace

int DecimalPlaceOfLeftmostDigit(const double& value) {
    if (value == 0.0 || !std::isfinite(value)) {
        return 1;
    }
    double x = std::fabs(value);
    int place = static_cast<int>(std::log10(x)); // truncated toward zero
    if (x >= 1.0) {
        ++place;
    }
    return place;
}

char* Double2String(char* buffer, uint64_t bufferSize, const double& value, int significantDigits,
                    bool trimZeros) {
    const int leftmost = DecimalPlaceOfLeftmostDigit(value);
    if (buffer == nullptr) {
        return buffer;
    }
    if (bufferSize > 0) {
        buffer[0] = '\0';
    }
    const int exponentPrecision =
        significantDigits >= 2 ? significantDigits - 1 : significantDigits;
    const int decimals = significantDigits - leftmost;
    const int64_t size = static_cast<int64_t>(bufferSize > INT64_MAX ? INT64_MAX : bufferSize);
    char tempResultStr[kWorkSize] = {0};
    bool fromWholeNumber = false;

    if (decimals < 1) {
        if ((value >= 0 && leftmost < size) || (value < 0 && leftmost + 1 < size)) {
            FormatBounded(buffer, static_cast<size_t>(bufferSize), "%.0f", value);
            return buffer;
        }
        FormatExponent(tempResultStr, value, exponentPrecision);
        fromWholeNumber = true;
    } else {
        char format[kFormatSize];
        if (FormatBounded(format, sizeof format, "%%.%df", decimals)) {
            FormatBounded(tempResultStr, sizeof tempResultStr, format, value);
        }
        if (tempResultStr[0] == '0' && tempResultStr[1] == '.') {
            std::memmove(tempResultStr, tempResultStr + 1, std::strlen(tempResultStr));
        } else if (tempResultStr[0] == '-' && tempResultStr[1] == '0') {
            std::memmove(tempResultStr + 1, tempResultStr + 2, std::strlen(tempResultStr + 1));
        }
        if (trimZeros) {
            TrimTrailing(tempResultStr, '0');
        }
        TrimTrailing(tempResultStr, '.');
        TrimTrailing(tempResultStr, '-');
        if (tempResultStr[0] == '\0') {
            std::strcpy(tempResultStr, "0");
        }
        if (static_cast<int64_t>(std::strlen(tempResultStr)) < size) {
            CopyTruncated(buffer, bufferSize, tempResultStr);
            return buffer;
        }
        FormatExponent(tempResultStr, value, exponentPrecision);
    }

    if (static_cast<int64_t>(std::strlen(tempResultStr)) >= size) {
        const bool carryOn =
            fromWholeNumber ? BALTYPEUTILS_VERIFY(false, "strlen(tempResultStr) < (int)bufferSize")
                            : BALTYPEUTILS_VERIFY(false, "strlen(tempResultStr) < bufferSize");
        if (!carryOn) {
            BALTYPEUTILS_ERROR(
                "Cannot Continue--The buffer passed into Float2String is too small.");
            return buffer;
        }
    }
    if (bufferSize > 0) {
        CopyTruncated(buffer, bufferSize, tempResultStr);
    }
    return buffer;
}

char* Float2String(char* buffer, uint64_t bufferSize, const float& value, int significantDigits) {
    const double widened = value;
    return Double2String(buffer, bufferSize, widened, significantDigits, true);
}
