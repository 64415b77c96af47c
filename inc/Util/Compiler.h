// Compiler shims, in one place: attributes and built-ins that GCC, clang and MSVC spell
// differently. Each macro expands to nothing (or to plain code) where a compiler has no
// equivalent, so code that uses them stays portable.
//
// ZT_PRINTF_FORMAT(f, a)  the function takes a printf format as argument f, its values from a
// ZT_FUNC_SIG             the enclosing function's full signature, as a string literal
// ZT_NOINLINE             never inline this function
// ZT_COLD                 this function runs rarely (also never inlined)
// ZT_LIKELY(x), ZT_UNLIKELY(x)  branch hints
// ZT_INIT_PRIORITY(n)     construct this global before those of lower priority (GCC, clang)
// ZT_FLATTEN              inline into this function every call the compiler can see (hot paths)
// Util::CountTrailingZeros64(bits)  index of the lowest set bit of a non-zero value
#pragma once

#include <cstdint>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#define ZT_PRINTF_FORMAT(formatIndex, firstArgument)
#define ZT_FUNC_SIG __FUNCSIG__
#define ZT_NOINLINE __declspec(noinline)
#define ZT_COLD __declspec(noinline)
#define ZT_LIKELY(x) (x)
#define ZT_UNLIKELY(x) (x)
#define ZT_INIT_PRIORITY(n)
#define ZT_FLATTEN
#else
#define ZT_PRINTF_FORMAT(formatIndex, firstArgument)                                               \
    __attribute__((format(printf, formatIndex, firstArgument)))
#define ZT_FUNC_SIG __PRETTY_FUNCTION__
#define ZT_NOINLINE __attribute__((noinline))
#define ZT_COLD __attribute__((cold, noinline))
#define ZT_LIKELY(x) __builtin_expect(!!(x), 1)
#define ZT_UNLIKELY(x) __builtin_expect(!!(x), 0)
#define ZT_INIT_PRIORITY(n) __attribute__((init_priority(n)))
#define ZT_FLATTEN __attribute__((flatten))
#endif

namespace Util {

inline unsigned CountTrailingZeros64(std::uint64_t bits) {
#if defined(_MSC_VER) && !defined(__clang__)
    unsigned long index;
    _BitScanForward64(&index, bits);
    return static_cast<unsigned>(index);
#else
    return static_cast<unsigned>(__builtin_ctzll(bits));
#endif
}

} // namespace Util
