#include "OSIsolation/src/crtpath.h"

#include <cerrno>
#include <cstring>

namespace Util {
namespace Platform {

namespace {

bool IsSeparator(char c) {
    return c == '/' || c == '\\';
}

// Checks one output buffer: a null buffer must come with size 0 and a real one with a size.
bool ValidBuffer(const char* buffer, std::size_t size) {
    return (buffer == nullptr) == (size == 0);
}

void Empty(char* buffer, std::size_t size) {
    if (buffer != nullptr && size > 0)
        buffer[0] = '\0';
}

bool CopyPart(char* buffer, std::size_t size, const char* from, std::size_t length) {
    if (buffer == nullptr)
        return true;
    if (length + 1 > size)
        return false;
    std::memcpy(buffer, from, length);
    buffer[length] = '\0';
    return true;
}

class Builder {
public:
    Builder(char* out, std::size_t size) : m_out(out), m_size(size) {}
    void Put(char c) {
        if (m_length + 1 < m_size)
            m_out[m_length] = c;
        ++m_length;
    }
    void Put(const char* text) {
        for (; *text; ++text)
            Put(*text);
    }
    bool Finish() {
        if (m_length + 1 > m_size) {
            m_out[0] = '\0';
            return false;
        }
        m_out[m_length] = '\0';
        return true;
    }

private:
    char* m_out;
    std::size_t m_size;
    std::size_t m_length = 0;
};

} // namespace

PathSpans SplitPathSpans(const char* path) {
    PathSpans spans{};
    const std::size_t length = std::strlen(path);
    spans.driveEnd = (length >= 2 && path[1] == ':') ? 2 : 0;
    spans.dirEnd = spans.driveEnd;
    for (std::size_t i = spans.driveEnd; i < length; ++i)
        if (IsSeparator(path[i]))
            spans.dirEnd = i + 1;
    spans.fnameEnd = length;
    for (std::size_t i = length; i > spans.dirEnd; --i) {
        if (path[i - 1] == '.') {
            spans.fnameEnd = i - 1;
            break;
        }
    }
    spans.extEnd = length;
    return spans;
}

int SplitPath(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize,
              char* fname, std::size_t fnameSize, char* ext, std::size_t extSize) {
    auto emptyAll = [&] {
        Empty(drive, driveSize);
        Empty(dir, dirSize);
        Empty(fname, fnameSize);
        Empty(ext, extSize);
    };
    if (path == nullptr || !ValidBuffer(drive, driveSize) || !ValidBuffer(dir, dirSize) ||
        !ValidBuffer(fname, fnameSize) || !ValidBuffer(ext, extSize)) {
        emptyAll();
        return EINVAL;
    }
    const PathSpans spans = SplitPathSpans(path);
    if (!CopyPart(drive, driveSize, path, spans.driveEnd) ||
        !CopyPart(dir, dirSize, path + spans.driveEnd, spans.dirEnd - spans.driveEnd) ||
        !CopyPart(fname, fnameSize, path + spans.dirEnd, spans.fnameEnd - spans.dirEnd) ||
        !CopyPart(ext, extSize, path + spans.fnameEnd, spans.extEnd - spans.fnameEnd)) {
        emptyAll();
        return ERANGE;
    }
    return 0;
}

int MakePath(char* path, std::size_t size, const char* drive, const char* dir, const char* fname,
             const char* ext, char separator) {
    if (path == nullptr || size == 0)
        return EINVAL;
    Builder out(path, size);
    if (drive != nullptr && drive[0] != '\0') {
        out.Put(drive[0]);
        out.Put(':');
    }
    if (dir != nullptr && dir[0] != '\0') {
        out.Put(dir);
        if (!IsSeparator(dir[std::strlen(dir) - 1]))
            out.Put(separator);
    }
    if (fname != nullptr)
        out.Put(fname);
    if (ext != nullptr && ext[0] != '\0') {
        if (ext[0] != '.')
            out.Put('.');
        out.Put(ext);
    }
    return out.Finish() ? 0 : ERANGE;
}

} // namespace Platform
} // namespace Util
