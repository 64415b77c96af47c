// POSIX emulation of CreateNamedPipeA: "\\.\pipe\NAME" becomes a FIFO in the run-time
// directory. The server end holds the FIFO open for reading and writing, so that a client can
// open its end at once; a FIFO carries bytes one way, so duplex and message pipes are refused.
#include "OSIsolation/src/win32filecommon_posix.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <mutex>

namespace Util {
namespace Platform {

namespace {

const char PipePrefix[] = "//./pipe/";

struct PipeRegistry {
    std::mutex mutex;
    std::map<std::string, unsigned> instances;
};

PipeRegistry& Pipes() {
    static PipeRegistry* registry = new PipeRegistry;
    return *registry;
}

std::string FifoPath(const std::string& nativePath) {
    std::string name = nativePath.substr(sizeof PipePrefix - 1);
    for (char& c : name)
        if (c == '/')
            c = '_';
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string directory = (runtime != nullptr && runtime[0] == '/') ? runtime : "/tmp";
    return directory + "/ztpipe-" + name;
}

} // namespace

bool IsPipeName(const std::string& nativePath) {
    return nativePath.size() > sizeof PipePrefix - 1 &&
           ::strncasecmp(nativePath.c_str(), PipePrefix, sizeof PipePrefix - 1) == 0;
}

HANDLE OpenPipeClient(const std::string& nativePath, DWORD access) {
    const bool read = (access & ReadRights) != 0;
    const bool write = (access & WriteRights) != 0;
    const std::string fifo = FifoPath(nativePath);
    struct stat info;
    if (::stat(fifo.c_str(), &info) != 0 || !S_ISFIFO(info.st_mode))
        return FailHandle(ERROR_FILE_NOT_FOUND);
    if (read && write)
        return FailHandle(ERROR_ACCESS_DENIED);
    // Non-blocking so that a FIFO nobody serves fails instead of hanging.
    const int fd = ::open(fifo.c_str(), (write ? O_WRONLY : O_RDONLY) | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return FailHandle(errno == ENXIO ? static_cast<DWORD>(ERROR_FILE_NOT_FOUND)
                                         : Win32::ErrorFromErrno(errno));
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    auto file = std::make_shared<FileObject>();
    file->fd = fd;
    file->access = access;
    file->isPipe = true;
    Win32::SetLastError(ERROR_SUCCESS);
    return AddHandle(file);
}

} // namespace Platform

namespace Win32 {

using namespace Util::Platform;

HANDLE CreateNamedPipeA(LPCSTR name, DWORD openMode, DWORD pipeMode, DWORD maxInstances, DWORD,
                        DWORD, DWORD, LPSECURITY_ATTRIBUTES) {
    const std::string path = NativePath(name);
    if (!IsPipeName(path))
        return FailHandle(ERROR_INVALID_NAME);
    const DWORD direction = openMode & PIPE_ACCESS_DUPLEX;
    if (direction == 0 || maxInstances == 0 || maxInstances > PIPE_UNLIMITED_INSTANCES)
        return FailHandle(ERROR_INVALID_PARAMETER);
    if (direction == PIPE_ACCESS_DUPLEX || (pipeMode & (PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE)))
        return FailHandle(ERROR_NOT_SUPPORTED);

    const std::string fifo = FifoPath(path);
    PipeRegistry& registry = Pipes();
    std::lock_guard<std::mutex> lock(registry.mutex);
    unsigned& count = registry.instances[fifo];
    if (maxInstances != PIPE_UNLIMITED_INSTANCES && count >= maxInstances)
        return FailHandle(ERROR_PIPE_BUSY);
    if (::mkfifo(fifo.c_str(), 0600) != 0 && errno != EEXIST) {
        const DWORD error = ErrorFromErrno(errno);
        if (count == 0)
            registry.instances.erase(fifo);
        return FailHandle(error);
    }
    struct stat info;
    if (::stat(fifo.c_str(), &info) != 0 || !S_ISFIFO(info.st_mode))
        return FailHandle(ERROR_ACCESS_DENIED);
    const int fd = ::open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return FailHandle(ErrorFromErrno(errno));
    ++count;
    auto file = std::make_shared<FileObject>();
    file->fd = fd;
    file->access = direction == PIPE_ACCESS_INBOUND ? GENERIC_READ : GENERIC_WRITE;
    file->isPipe = true;
    file->onClose = [fifo] {
        PipeRegistry& pipes = Pipes();
        std::lock_guard<std::mutex> guard(pipes.mutex);
        auto found = pipes.instances.find(fifo);
        if (found != pipes.instances.end() && --found->second == 0) {
            pipes.instances.erase(found);
            ::unlink(fifo.c_str());
        }
    };
    SetLastError(ERROR_SUCCESS);
    return AddHandle(file);
}

} // namespace Win32
} // namespace Util
