// POSIX emulation of ShellExecuteA: a program is started with its parameters, anything else
// (a document, a folder, a URL) is handed to the desktop's opener, xdg-open. The child is
// detached (double fork) and its own result is not awaited.
#include "OSIsolation/src/win32filecommon_posix.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#ifndef ERROR_NO_ASSOCIATION
#define ERROR_NO_ASSOCIATION 1155L
#endif

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

HINSTANCE Result(int code) {
    return reinterpret_cast<HINSTANCE>(static_cast<std::intptr_t>(code));
}

HINSTANCE Fail(int code, DWORD error) {
    SetLastError(error);
    return Result(code);
}

bool IsUrl(const char* file) {
    return std::strstr(file, "://") != nullptr || ::strncasecmp(file, "mailto:", 7) == 0;
}

std::string FindInPath(const char* program) {
    const char* path = std::getenv("PATH");
    std::string directories = path ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t begin = 0;
    while (begin <= directories.size()) {
        std::size_t end = directories.find(':', begin);
        if (end == std::string::npos)
            end = directories.size();
        const std::string candidate =
            (end > begin ? directories.substr(begin, end - begin) : std::string(".")) + "/" +
            program;
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    return std::string();
}

// Splits a command line the simple way: blanks separate, double quotes group.
std::vector<std::string> SplitParameters(const char* parameters) {
    std::vector<std::string> words;
    if (parameters == nullptr)
        return words;
    std::string word;
    bool quoted = false, inWord = false;
    for (const char* c = parameters; *c; ++c) {
        if (*c == '"') {
            quoted = !quoted;
            inWord = true;
        } else if ((*c == ' ' || *c == '\t') && !quoted) {
            if (inWord)
                words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += *c;
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(word);
    return words;
}

bool Launch(const std::vector<std::string>& command, const std::string& directory) {
    std::vector<char*> argv;
    for (const std::string& word : command)
        argv.push_back(const_cast<char*>(word.c_str()));
    argv.push_back(nullptr);
    const pid_t child = ::fork();
    if (child < 0)
        return false;
    if (child == 0) {
        ::setsid();
        if (::fork() != 0)
            ::_exit(0);
        const int null = ::open("/dev/null", O_RDWR);
        if (null >= 0) {
            ::dup2(null, 0);
            ::dup2(null, 1);
            ::dup2(null, 2);
        }
        if (!directory.empty() && ::chdir(directory.c_str()) != 0)
            ::_exit(127);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return true;
}

} // namespace

HINSTANCE ShellExecuteA(HWND, LPCSTR operation, LPCSTR file, LPCSTR parameters, LPCSTR directory,
                        INT) {
    if (file == nullptr || file[0] == '\0')
        return Fail(SE_ERR_FNF, ERROR_FILE_NOT_FOUND);
    const bool open =
        operation == nullptr || operation[0] == '\0' || ::strcasecmp(operation, "open") == 0 ||
        ::strcasecmp(operation, "explore") == 0 || ::strcasecmp(operation, "edit") == 0;
    if (!open)
        return Fail(SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION);
    const std::string workingDirectory = directory ? NativePath(directory) : std::string();

    std::vector<std::string> command;
    if (IsUrl(file)) {
        command.push_back(file);
    } else {
        std::string path = NativePath(file);
        if (path[0] != '/' && !workingDirectory.empty())
            path = workingDirectory + "/" + path;
        struct stat info;
        if (::stat(path.c_str(), &info) != 0) {
            const DWORD error = ErrorForPath(errno, path);
            return Fail(error == ERROR_PATH_NOT_FOUND ? SE_ERR_PNF : SE_ERR_FNF, error);
        }
        if (S_ISREG(info.st_mode) && (info.st_mode & S_IXUSR)) {
            command.push_back(path);
            for (const std::string& word : SplitParameters(parameters))
                command.push_back(word);
            if (!Launch(command, workingDirectory))
                return Fail(SE_ERR_OOM, ErrorFromErrno(errno));
            return Result(42);
        }
        command.push_back(path);
    }
    const std::string opener = FindInPath("xdg-open");
    if (opener.empty())
        return Fail(SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION);
    command.insert(command.begin(), opener);
    if (!Launch(command, workingDirectory))
        return Fail(SE_ERR_OOM, ErrorFromErrno(errno));
    return Result(42);
}

} // namespace Win32
} // namespace Util
