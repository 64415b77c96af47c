// The limit tables of BalType, the process-wide limit mode and flags, and the decimal separator.
#include "DataTypes/src/baltype_impl.h"
#include "DataTypes/src/baltype_platform.h"

#include <atomic>

namespace {
constexpr int64_t kLimits9Byte[BaltypeLimits::LimitCount] = {0,
                                                             10000000000000LL,
                                                             10000000000LL,
                                                             9999999999LL,
                                                             99999,
                                                             9999999999999LL,
                                                             99,
                                                             13,
                                                             2,
                                                             10,
                                                             5,
                                                             99999,
                                                             59,
                                                             23,
                                                             10000000000000LL,
                                                             10000000000LL,
                                                             9999999999LL};

constexpr int64_t kLimits6Byte[BaltypeLimits::LimitCount] = {
    0, 100000000LL, 10000000LL, 9999999LL, 99999, 99999999LL,   99,         8,         2,
    7, 5,           99999,      59,        23,    4294967296LL, 10000000LL, 16777215LL};

constexpr double kFloatLimits9Byte[BaltypeLimits::FloatLimitCount] = {0.0, 9999999999999.99,
                                                                      9999999999.99999};
constexpr double kFloatLimits6Byte[BaltypeLimits::FloatLimitCount] = {0.0, 4294967295.99,
                                                                      4294967295.99999};

// 0 means "not read yet": the locale is asked on first use.
std::atomic<char> g_decimalSeparator{0};

int64_t Entry(const int64_t (&row)[BaltypeLimits::LimitCount], int index) {
    return index >= 0 && index < BaltypeLimits::LimitCount ? row[index] : 0;
}

double FloatEntry(const double (&row)[BaltypeLimits::FloatLimitCount], int index) {
    return index >= 0 && index < BaltypeLimits::FloatLimitCount ? row[index] : 0.0;
}

} // namespace

namespace BalTypeInternal {
std::atomic<int> g_limitMode{BaltypeLimits::LimitMode9Byte};

Maxima BuildMaxima() {
    Maxima m;
    m.dollar[0] = ZtDecimal64(kFloatLimits9Byte[BaltypeLimits::FloatLimitDollarMax]);
    m.dollar[1] = ZtDecimal64(kFloatLimits6Byte[BaltypeLimits::FloatLimitDollarMax]);
    m.qty[0] = ZtDecimal64(kFloatLimits9Byte[BaltypeLimits::FloatLimitQtyMax]);
    m.qty[1] = ZtDecimal64(kFloatLimits6Byte[BaltypeLimits::FloatLimitQtyMax]);
    return m;
}

std::atomic<unsigned char> g_overflowFlag{0};
std::atomic<unsigned char> g_dbOverflowFlag{0};
} // namespace BalTypeInternal

using BalTypeInternal::g_limitMode;

void BaltypeLimits::SetLimitMode(int mode) {
    if (mode == LimitMode9Byte || mode == LimitMode6Byte) {
        g_limitMode.store(mode, std::memory_order_relaxed);
    }
}

BaltypeLimits::LimitMode BaltypeLimits::GetLimitMode() {
    return static_cast<LimitMode>(g_limitMode.load(std::memory_order_relaxed));
}

int64_t BaltypeLimits::GetLimit(BalTypeLimitValueEnum index) {
    return GetLimitMode() == LimitMode6Byte ? GetLimit_6byteBalType(index)
                                            : GetLimit_9byteBalType(index);
}

int64_t BaltypeLimits::GetLimit_9byteBalType(BalTypeLimitValueEnum index) {
    return Entry(kLimits9Byte, index);
}

int64_t BaltypeLimits::GetLimit_6byteBalType(BalTypeLimitValueEnum index) {
    return Entry(kLimits6Byte, index);
}

double BaltypeLimits::GetFloatLimit(BalTypeFloatLimitValueEnum index) {
    return GetLimitMode() == LimitMode6Byte ? GetFloatLimit_6byteBalType(index)
                                            : GetFloatLimit_9byteBalType(index);
}

double BaltypeLimits::GetFloatLimit_9byteBalType(BalTypeFloatLimitValueEnum index) {
    return FloatEntry(kFloatLimits9Byte, index);
}

double BaltypeLimits::GetFloatLimit_6byteBalType(BalTypeFloatLimitValueEnum index) {
    return FloatEntry(kFloatLimits6Byte, index);
}

const ZtDecimal64& BalTypeDollarMaxValue() {
    return BalTypeInternal::DollarMax();
}
const ZtDecimal64& BalTypeQtyMaxValue() {
    return BalTypeInternal::QtyMax();
}

bool GetBalTypeOverflowFlag() {
    return BalTypeInternal::g_overflowFlag.load(std::memory_order_relaxed) != 0;
}

void ResetBalTypeOverflowFlag() {
    BalTypeInternal::g_overflowFlag.store(0, std::memory_order_relaxed);
}

bool GetBalTypeDBOverflowFlag() {
    return BalTypeInternal::g_dbOverflowFlag.load(std::memory_order_relaxed) != 0;
}

void ClearDBOverflowFlag() {
    BalTypeInternal::g_dbOverflowFlag.store(0, std::memory_order_relaxed);
}

char GetBalTypeDecimalSeparator() {
    char separator = g_decimalSeparator.load(std::memory_order_relaxed);
    if (separator == 0) {
        // Two threads may both read the locale; they store the same character.
        separator = BalTypePlatform::ReadMonetaryDecimalSeparator();
        if (separator == 0) {
            separator = '.';
        }
        g_decimalSeparator.store(separator, std::memory_order_relaxed);
    }
    return separator;
}

void SetBalTypeDecimalSeparator(char separator) {
    if (separator != 0) {
        g_decimalSeparator.store(separator, std::memory_order_relaxed);
    }
}

bool BalTypeULAdd(uint64_t a, uint64_t b, uint64_t& sum) {
    sum = a + b;
    return sum >= static_cast<uint64_t>(BaltypeLimits::GetLimit(BaltypeLimits::RawDollarBound));
}
