#include "DataAccessor/src/repositoryfile_platform.h"

#include "Util/Win32.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Norvane {
namespace Utilities {
namespace Platform {

using namespace Util::Win32;

const char* const kLineBreak = "\n";

namespace {

DWORD LastErrno() {
    return Util::Win32::ErrorFromErrno(errno);
}

std::uint64_t Nanoseconds(const struct timespec& t) {
    return static_cast<std::uint64_t>(t.tv_sec) * 1000000000u +
           static_cast<std::uint64_t>(t.tv_nsec);
}

DWORD WriteAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return LastErrno();
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return 0;
}

} // namespace

FileStamp StampOf(const std::string& path) {
    FileStamp stamp;
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        return stamp;
    stamp.exists = true;
    stamp.id =
        static_cast<std::uint64_t>(st.st_ino) ^ (static_cast<std::uint64_t>(st.st_dev) << 40);
    stamp.size = static_cast<std::uint64_t>(st.st_size);
    stamp.modified = Nanoseconds(st.st_mtim);
    stamp.changed = Nanoseconds(st.st_ctim);
    return stamp;
}

DWORD ReadWholeFile(const std::string& path, std::string& data) {
    data.clear();
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return LastErrno();
    char chunk[65536];
    for (;;) {
        ssize_t got = ::read(fd, chunk, sizeof chunk);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            DWORD error = LastErrno();
            ::close(fd);
            return error;
        }
        if (got == 0)
            break;
        data.append(chunk, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return 0;
}

DWORD WriteFileDurably(const std::string& path, const std::string& data) {
    const std::string temp = path + "." + std::to_string(::getpid()) + ".tmp";
    int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0)
        return LastErrno();
    struct stat old;
    if (::stat(path.c_str(), &old) == 0)
        (void)::fchmod(fd, old.st_mode & 07777);
    DWORD error = WriteAll(fd, data.data(), data.size());
    if (error == 0 && ::fsync(fd) != 0)
        error = LastErrno();
    if (::close(fd) != 0 && error == 0)
        error = LastErrno();
    if (error == 0 && ::rename(temp.c_str(), path.c_str()) != 0)
        error = LastErrno();
    if (error != 0) {
        ::unlink(temp.c_str());
        return error;
    }
    std::string::size_type slash = path.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    int dirFd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        (void)::fsync(dirFd);
        ::close(dirFd);
    }
    return 0;
}

DWORD MoveFileAside(const std::string& from, const std::string& to) {
    // A hard link never replaces an existing name; fall back to rename where links are not
    // supported, after checking that the new name is free.
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return 0;
    }
    if (errno == EEXIST)
        return ERROR_ALREADY_EXISTS;
    struct stat st;
    if (::stat(to.c_str(), &st) == 0)
        return ERROR_ALREADY_EXISTS;
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : LastErrno();
}

DWORD AppendToFile(const std::string& path, const std::string& text) {
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (fd < 0)
        return LastErrno();
    DWORD error = WriteAll(fd, text.data(), text.size());
    ::close(fd);
    return error;
}

void LocalTime(std::time_t when, std::tm& local) {
    ::localtime_r(&when, &local);
}

std::string ToUtf8(const char* text) {
    return text != nullptr ? std::string(text) : std::string();
}

std::string FromUtf8(const char* text) {
    return text != nullptr ? std::string(text) : std::string();
}

DWORD FileLock::Acquire(const std::string& lockPath) {
    Release();
    int fd = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        return LastErrno();
    while (::flock(fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            DWORD error = LastErrno();
            ::close(fd);
            return error;
        }
    }
    m_handle = fd;
    return 0;
}

void FileLock::Release() {
    if (m_handle >= 0) {
        ::flock(static_cast<int>(m_handle), LOCK_UN);
        ::close(static_cast<int>(m_handle));
        m_handle = -1;
    }
}

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
