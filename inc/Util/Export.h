// ZTUTIL_API marks what the shared library exports; nothing else is visible outside it.
// On Windows the library's own build exports (dllexport) and its users import (dllimport).
// On POSIX the library is built with hidden visibility (-fvisibility=hidden and
// -fvisibility-inlines-hidden), and the mark gives its declarations default visibility, in the
// library and in its users alike, so that a user built with hidden visibility still binds to
// the library's symbols. Both platforms therefore export the same set of names, and a mark
// missing on a class or function shows up as a link error on Linux as on Windows.
// ZTUTIL_API_ATTR is the same mark as a standard attribute, for a class that carries other
// standard attributes (GCC takes no GNU attribute after them):
//     class [[nodiscard]] ZTUTIL_API_ATTR Status { ... };
#pragma once

#if defined(_WIN32)
#if defined(ZTUTIL_BUILDING)
#define ZTUTIL_API __declspec(dllexport)
#if defined(__GNUC__)
#define ZTUTIL_API_ATTR [[gnu::dllexport]]
#endif
#else
#define ZTUTIL_API __declspec(dllimport)
#if defined(__GNUC__)
#define ZTUTIL_API_ATTR [[gnu::dllimport]]
#endif
#endif
#elif defined(__GNUC__)
#define ZTUTIL_API __attribute__((visibility("default")))
#define ZTUTIL_API_ATTR [[gnu::visibility("default")]]
#else
#define ZTUTIL_API
#define ZTUTIL_API_ATTR
#endif

#if !defined(ZTUTIL_API_ATTR)
#define ZTUTIL_API_ATTR ZTUTIL_API
#endif
