// The one place that includes the Intel decimal library's header.
//
// The library's entry points change shape with its configuration macros (by value or by
// reference, rounding mode and status flags passed or global), so every file must see the same
// configuration as the archive we link: by value, global rounding, global status flags. The build
// defines these on the target; the fallbacks below keep a file compiled on its own consistent.
#pragma once

#ifndef DECIMAL_CALL_BY_REFERENCE
#define DECIMAL_CALL_BY_REFERENCE 0
#endif
#ifndef DECIMAL_GLOBAL_ROUNDING
#define DECIMAL_GLOBAL_ROUNDING 1
#endif
#ifndef DECIMAL_GLOBAL_EXCEPTION_FLAGS
#define DECIMAL_GLOBAL_EXCEPTION_FLAGS 1
#endif

#if DECIMAL_CALL_BY_REFERENCE != 0 || DECIMAL_GLOBAL_ROUNDING != 1 ||                              \
    DECIMAL_GLOBAL_EXCEPTION_FLAGS != 1
#error "ZtDecimal64 needs the by-value, global-rounding, global-flags build of the BID library"
#endif

#include <bid_conf.h>
#include <bid_functions.h>

// Status flags of the library (IEEE exception bits).
namespace ZtBid {
constexpr unsigned kInvalid = 0x01;
constexpr unsigned kDenormal = 0x02;
constexpr unsigned kZeroDivide = 0x04;
constexpr unsigned kOverflow = 0x08;
constexpr unsigned kUnderflow = 0x10;
constexpr unsigned kInexact = 0x20;
// Flags that make a conversion fail; inexact (and denormal) alone do not.
constexpr unsigned kConversionFailureMask = kInvalid | kZeroDivide | kOverflow | kUnderflow;

inline void ClearFlags() {
    __bid_IDEC_glbflags = 0;
}
inline unsigned Flags() {
    return static_cast<unsigned>(__bid_IDEC_glbflags);
}
} // namespace ZtBid
