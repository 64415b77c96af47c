// POSIX emulation of the C runtime's path-text functions.
#include "Util/Win32Crt.h"

#include "OSIsolation/src/crtpath.h"
#include "OSIsolation/src/win32filecommon_posix.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

std::string CurrentDirectory() {
    std::vector<char> buffer(4096);
    while (::getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE || buffer.size() > (1u << 20))
            return std::string();
        buffer.resize(buffer.size() * 2);
    }
    return buffer.data();
}

// Joins the path to the current directory and resolves "." and ".." by text, as Windows does.
std::string Absolute(const std::string& relative) {
    std::string whole = relative;
    if (whole.empty() || whole[0] != '/')
        whole = CurrentDirectory() + "/" + whole;
    std::vector<std::string> parts;
    std::size_t begin = 0;
    while (begin <= whole.size()) {
        std::size_t end = whole.find('/', begin);
        if (end == std::string::npos)
            end = whole.size();
        const std::string part = whole.substr(begin, end - begin);
        if (part == "..") {
            if (!parts.empty())
                parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        begin = end + 1;
    }
    std::string result;
    for (const std::string& part : parts)
        result += "/" + part;
    if (result.empty())
        return "/";
    if (!relative.empty() && relative.back() == '/')
        result += '/';
    return result;
}

} // namespace

char* _fullpath(char* absPath, const char* relPath, std::size_t maxLength) {
    const std::string relative = NativePath(relPath);
    const std::string result = Absolute(relative);
    if (absPath == nullptr) {
        char* allocated = static_cast<char*>(std::malloc(result.size() + 1));
        if (allocated == nullptr) {
            errno = ENOMEM;
            return nullptr;
        }
        std::memcpy(allocated, result.c_str(), result.size() + 1);
        return allocated;
    }
    if (maxLength == 0) {
        errno = EINVAL;
        return nullptr;
    }
    if (result.size() + 1 > maxLength) {
        errno = ERANGE;
        return nullptr;
    }
    std::memcpy(absPath, result.c_str(), result.size() + 1);
    return absPath;
}

errno_t _makepath_s(char* path, std::size_t sizeInCharacters, const char* drive, const char* dir,
                    const char* fname, const char* ext) {
    const int result = MakePath(path, sizeInCharacters, drive, dir, fname, ext, '/');
    if (result != 0)
        errno = result;
    return result;
}

errno_t _splitpath_s(const char* path, char* drive, std::size_t driveNumberOfElements, char* dir,
                     std::size_t dirNumberOfElements, char* fname, std::size_t nameNumberOfElements,
                     char* ext, std::size_t extNumberOfElements) {
    const int result = SplitPath(path, drive, driveNumberOfElements, dir, dirNumberOfElements,
                                 fname, nameNumberOfElements, ext, extNumberOfElements);
    if (result != 0)
        errno = result;
    return result;
}

errno_t _mktemp_s(char* nameTemplate, std::size_t sizeInChars) {
    if (nameTemplate == nullptr || sizeInChars == 0) {
        errno = EINVAL;
        return EINVAL;
    }
    const std::size_t length = ::strnlen(nameTemplate, sizeInChars);
    if (length >= sizeInChars || length < 6 ||
        std::strcmp(nameTemplate + length - 6, "XXXXXX") != 0) {
        nameTemplate[0] = '\0';
        errno = EINVAL;
        return EINVAL;
    }
    char* tail = nameTemplate + length - 6;
    unsigned number = static_cast<unsigned>(::getpid()) % 100000u;
    for (int digit = 5; digit >= 1; --digit) {
        tail[digit] = static_cast<char>('0' + number % 10);
        number /= 10;
    }
    for (char letter = 'a'; letter <= 'z'; ++letter) {
        tail[0] = letter;
        if (::access(NativePath(nameTemplate).c_str(), F_OK) != 0 && errno == ENOENT)
            return 0;
    }
    nameTemplate[0] = '\0';
    errno = EEXIST;
    return EEXIST;
}

} // namespace Win32
} // namespace Util
