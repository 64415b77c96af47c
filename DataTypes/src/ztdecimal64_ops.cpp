// The binary arithmetic operators of ZtDecimal64, each a single jump into the library.
//
// A ZtDecimal64 is one trivially copyable 64-bit word, so it is passed and returned exactly like
// the library's BID_UINT64 (in a register). Declaring the library's entry points with
// ZtDecimal64 in place of BID_UINT64 lets the compiler forward each operator as a tail jump; this
// file therefore must not include bid_functions.h. The names are those of the by-value,
// global-rounding, global-flags build that ztdecimal64_bid.h enforces for the rest of the code.
#include "Util/ZtDecimal64.h"

#include <type_traits>

static_assert(std::is_trivially_copyable<ZtDecimal64>::value && sizeof(ZtDecimal64) == 8,
              "ZtDecimal64 must travel like the library's 64-bit word");

// The class is deliberately used as the C return type here: see above.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif
extern "C" {
ZtDecimal64 __bid64_add(ZtDecimal64, ZtDecimal64);
ZtDecimal64 __bid64_sub(ZtDecimal64, ZtDecimal64);
ZtDecimal64 __bid64_mul(ZtDecimal64, ZtDecimal64);
ZtDecimal64 __bid64_div(ZtDecimal64, ZtDecimal64);
ZtDecimal64 __bid64_fmod(ZtDecimal64, ZtDecimal64);
}
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

ZtDecimal64 ZtDecimal64Add(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return __bid64_add(lhs, rhs);
}
ZtDecimal64 ZtDecimal64Subtract(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return __bid64_sub(lhs, rhs);
}
ZtDecimal64 operator*(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return __bid64_mul(lhs, rhs);
}
ZtDecimal64 operator/(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return __bid64_div(lhs, rhs);
}
ZtDecimal64 operator%(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return __bid64_fmod(lhs, rhs);
}
