// ZTUTIL_API marks what the shared library exports. On Windows the library's own build
// exports and its users import; on POSIX every symbol has default visibility.
#pragma once

#if defined(_WIN32)
#if defined(ZTUTIL_BUILDING)
#define ZTUTIL_API __declspec(dllexport)
#else
#define ZTUTIL_API __declspec(dllimport)
#endif
#else
#define ZTUTIL_API
#endif
