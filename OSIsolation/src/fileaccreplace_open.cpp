// The traced openers: streams, low-level I/O and file creation. Each redirects its name, raises
// one event before the call and calls the real function on the redirected name.
#include "Util/FileAccReplace.h"

#include "OSIsolation/src/fileaccreplace_shared.h"

namespace Util {

using FileAcc::Name;
using FileAcc::Text;
using FileAcc::Trace;

namespace {

FILE* OpenStream(const char* fileName, const char* mode) {
    FILE* stream = nullptr;
    Win32::fopen_s(&stream, fileName, mode);
    return stream;
}

} // namespace

#define ZT_FOPEN(fn)                                                                               \
    FILE* fn(const char* fileName, const char* mode, const char* source, int line) {               \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode, %s"), name, source, line,        \
              Text(mode));                                                                         \
        return OpenStream(name.Real(), mode);                                                      \
    }
ZT_FOPEN(_Ztfopen)
ZT_FOPEN(_Zt_tfopen)

#define ZT_FOPEN_S(fn)                                                                             \
    errno_t fn(FILE** file, const char* fileName, const char* mode, const char* source,            \
               int line) {                                                                         \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode, %s"), name, source, line,        \
              Text(mode));                                                                         \
        return Win32::fopen_s(file, name.Real(), mode);                                            \
    }
ZT_FOPEN_S(_Ztfopen_s)
ZT_FOPEN_S(_Zt_tfopen_s)

#define ZT_FREOPEN(fn)                                                                             \
    FILE* fn(const char* path, const char* mode, FILE* stream, const char* source, int line) {     \
        const Name name(path);                                                                     \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode,%s "), name, source, line,        \
              Text(mode));                                                                         \
        return Win32::freopen(name.Real(), mode, stream);                                          \
    }
ZT_FREOPEN(_Ztfreopen)
ZT_FREOPEN(_Zt_tfreopen)

#define ZT_FREOPEN_S(fn)                                                                           \
    errno_t fn(FILE** file, const char* path, const char* mode, FILE* stream, const char* source,  \
               int line) {                                                                         \
        const Name name(path);                                                                     \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode,%s "), name, source, line,        \
              Text(mode));                                                                         \
        return Win32::freopen_s(file, name.Real(), mode, stream);                                  \
    }
ZT_FREOPEN_S(_Ztfreopen_s)
ZT_FREOPEN_S(_Zt_tfreopen_s)

// _open and _sopen: fields is the event's own field, which shows the open flag.
#define ZT_OPEN(fn, fields)                                                                        \
    int fn(const char* fileName, int openFlag, int permissionMode, const char* source, int line) { \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, fields), name, source, line, openFlag);  \
        return Win32::_open(name.Real(), openFlag, permissionMode);                                \
    }
#define ZT_OPEN2(fn, fields)                                                                       \
    int fn(const char* fileName, int openFlag, const char* source, int line) {                     \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, fields), name, source, line, openFlag);  \
        return Win32::_open(name.Real(), openFlag);                                                \
    }
ZT_OPEN(_Zt_open, ",oflag, %d")
ZT_OPEN2(_Zt_open2, ",oflag, %d")
ZT_OPEN(_Zt_topen, ",oflag, %d")
ZT_OPEN2(_Zt_topen2, ",oflag, %d")
ZT_OPEN(_Ztopen, ",mode, %d")
ZT_OPEN2(_Ztopen2, ",mode, %d")

#define ZT_SOPEN(fn)                                                                               \
    int fn(const char* fileName, int openFlag, int shareFlag, int permissionMode,                  \
           const char* source, int line) {                                                         \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode, %d"), name, source, line,        \
              openFlag);                                                                           \
        return Win32::_sopen(name.Real(), openFlag, shareFlag, permissionMode);                    \
    }
#define ZT_SOPEN2(fn)                                                                              \
    int fn(const char* fileName, int openFlag, int shareFlag, const char* source, int line) {      \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode, %d"), name, source, line,        \
              openFlag);                                                                           \
        return Win32::_sopen(name.Real(), openFlag, shareFlag);                                    \
    }
ZT_SOPEN(_Zt_sopen)
ZT_SOPEN2(_Zt_sopen2)
ZT_SOPEN(_Zt_tsopen)
ZT_SOPEN2(_Zt_tsopen2)
ZT_SOPEN(_Ztsopen)
ZT_SOPEN2(_Ztsopen2)

#define ZT_SOPEN_S(fn)                                                                             \
    errno_t fn(int* fileHandle, const char* fileName, int openFlag, int shareFlag,                 \
               int permissionMode, const char* source, int line) {                                 \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",mode, %d"), name, source, line,        \
              openFlag);                                                                           \
        return Win32::_sopen_s(fileHandle, name.Real(), openFlag, shareFlag, permissionMode);      \
    }
ZT_SOPEN_S(_Zt_sopen_s)
ZT_SOPEN_S(_Zt_tsopen_s)

#define ZT_CREAT(fn, fields)                                                                       \
    int fn(const char* fileName, int permissionMode, const char* source, int line) {               \
        const Name name(fileName);                                                                 \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, fields), name, source, line,             \
              permissionMode);                                                                     \
        return Win32::_creat(name.Real(), permissionMode);                                         \
    }
ZT_CREAT(_Zt_creat, ",mode, %d ")
ZT_CREAT(_Zt_tcreat, ",mode, %d ")
ZT_CREAT(_Ztcreat, ",mode, %d")

} // namespace Util
