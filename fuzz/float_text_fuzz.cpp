// Float2String and Double2String on every bit pattern, digit count and buffer size: the text
// stays inside the buffer and is terminated, and a fixed-point text reads back as a number close
// to the value. Fixed-point text is formatted into a 50-character work buffer first, so a value
// whose fixed form is longer (a tiny value asked for many digits) reads back as 0 by design and is
// left out of the value check.
#include "Util/BalTypeUtils.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 10)
        return 0;
    float f;
    double d;
    std::memcpy(&f, data, sizeof f);
    std::memcpy(&d, data + 2, sizeof d);
    const int digits = static_cast<int>(data[0] % 40) - 4;
    const std::size_t limit = data[1] % 64;
    char buffer[80];
    for (int pass = 0; pass < 2; ++pass) {
        std::memset(buffer, 'x', sizeof buffer);
        if (pass == 0)
            Float2String(buffer, limit, f, digits);
        else
            Double2String(buffer, limit, d, digits, (data[1] & 0x40) != 0);
        if (buffer[limit] != 'x' || (limit > 0 && std::strlen(buffer) >= limit))
            std::abort();
        const double value = pass == 0 ? f : d;
        // With room and at least 15 digits, finite text reads back within a relative 1e-6.
        const int whole = DecimalPlaceOfLeftmostDigit(value);
        const int decimals = digits - whole;
        const int fixedLength = (value < 0) + (decimals < 1 ? whole
                                               : whole >= 1 ? digits + 1
                                                            : decimals + 2);
        if (limit >= 40 && digits >= 15 && std::isfinite(value) && buffer[0] != '\0' &&
            fixedLength < 50) {
            const double back = std::strtod(buffer, nullptr);
            if (std::fabs(back - value) > 1e-6 * std::fabs(value) + 1e-300)
                std::abort();
        }
    }
    return 0;
}
