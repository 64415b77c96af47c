#include "OperationsManager/src/opsreadfile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Util/Win32.h"

namespace Util {
namespace OpsDetail {

namespace {

bool Fail(int err, ReadFileFailure& failure) {
    failure.win32Error = Win32::ErrorFromErrno(err);
    failure.reason = std::strerror(err);
    return false;
}

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return m_fd; }

private:
    int m_fd;
};

} // namespace

bool ReadRegularFile(const char* path, std::size_t maxSize, std::string& content,
                     ReadFileFailure& failure) {
    content.clear();
    // O_NONBLOCK: opening a FIFO that has no writer must not wait for one.
    Descriptor fd(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (fd.Get() < 0)
        return Fail(errno, failure);
    struct stat info;
    if (::fstat(fd.Get(), &info) != 0)
        return Fail(errno, failure);
    if (S_ISDIR(info.st_mode))
        return Fail(EISDIR, failure);
    if (!S_ISREG(info.st_mode)) {
        failure.win32Error = 0;
        failure.reason = "not a regular file";
        return false;
    }
    if (static_cast<unsigned long long>(info.st_size) > maxSize) {
        failure.win32Error = 0;
        failure.reason = "larger than " + std::to_string(maxSize) + " bytes";
        return false;
    }
    // The file may grow while it is read: read no more than the limit allows.
    content.resize(static_cast<std::size_t>(info.st_size) + 1);
    std::size_t used = 0;
    for (;;) {
        if (used == content.size()) {
            if (content.size() > maxSize) {
                content.clear();
                failure.win32Error = 0;
                failure.reason = "larger than " + std::to_string(maxSize) + " bytes";
                return false;
            }
            content.resize(std::min(maxSize + 1, content.size() * 2));
        }
        const ssize_t got = ::read(fd.Get(), &content[used], content.size() - used);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            content.clear();
            return Fail(errno, failure);
        }
        if (got == 0)
            break;
        used += static_cast<std::size_t>(got);
    }
    content.resize(used);
    return true;
}

} // namespace OpsDetail
} // namespace Util
