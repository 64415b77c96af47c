// ZTUTIL_API marks what the shared library exports. On Windows the library's own build
// exports and its users import; on POSIX every symbol has default visibility.
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
#else
#define ZTUTIL_API
#define ZTUTIL_API_ATTR
#endif

#if !defined(ZTUTIL_API_ATTR)
#define ZTUTIL_API_ATTR ZTUTIL_API
#endif
