// ZTUTIL_API marks what the shared library exports; everything else stays inside it.
// On Windows the library's own build exports and its users import. On POSIX the library is
// built with hidden visibility (-fvisibility=hidden -fvisibility-inlines-hidden), so only what
// carries ZTUTIL_API is visible outside, as on Windows.
#pragma once

#if defined(_WIN32)
#if defined(ZTUTIL_BUILDING)
#define ZTUTIL_API __declspec(dllexport)
#else
#define ZTUTIL_API __declspec(dllimport)
#endif
#else
#define ZTUTIL_API __attribute__((visibility("default")))
#endif
