// What each platform provides for the settings repositories and the profile log: durable
// replacement of a file, a cross-process lock, change detection, the 8-bit text encoding.
// Functions that fail return a Win32 error code (0 on success).
#pragma once

#include "Util/Win32Types.h"

#include <cstdint>
#include <ctime>
#include <string>

namespace Norvane {
namespace Utilities {
namespace Platform {

// The Win32 names (global on Windows, in Util::Win32 elsewhere).
using namespace Util::Win32;

extern const char* const kLineBreak;

// Identifies one version of a file on disk: a replaced or rewritten file gets a new stamp.
struct FileStamp {
    bool exists = false;
    std::uint64_t id = 0, size = 0, modified = 0, changed = 0;
    bool operator==(const FileStamp& o) const {
        return exists == o.exists && id == o.id && size == o.size && modified == o.modified &&
               changed == o.changed;
    }
    bool operator!=(const FileStamp& o) const { return !(*this == o); }
};

// The stamp of path; exists is false when there is no such file.
FileStamp StampOf(const std::string& path);

// Reads the whole file; ERROR_FILE_NOT_FOUND when it does not exist.
DWORD ReadWholeFile(const std::string& path, std::string& data);

// Replaces path with data so that either the old or the new content survives any crash: a
// temporary file in the same directory is written, flushed and renamed over path (and the
// directory flushed where the platform needs it). On failure the old file is untouched.
DWORD WriteFileDurably(const std::string& path, const std::string& data);

// Renames from to to, failing with ERROR_ALREADY_EXISTS instead of replacing to.
DWORD MoveFileAside(const std::string& from, const std::string& to);

// Appends text to a file, creating it; the directory must exist.
DWORD AppendToFile(const std::string& path, const std::string& text);

void LocalTime(std::time_t when, std::tm& local);

// 8-bit system text (the ANSI code page on Windows, UTF-8 on POSIX) to and from UTF-8.
std::string ToUtf8(const char* text);
std::string FromUtf8(const char* text);

// An exclusive lock held across processes on a lock file (created when missing).
class FileLock {
public:
    FileLock() = default;
    ~FileLock() { Release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Waits until the lock is held.
    DWORD Acquire(const std::string& lockPath);
    void Release();

private:
    std::intptr_t m_handle = -1;
};

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
