// Identifiers from the system's random source (version 4, RFC 9562), and the text rules of the
// Win32 RPC runtime: exactly 36 characters, groups 8-4-4-4-12, hexadecimal of either case read,
// lower case written.
#include "DataTypes/src/guid_platform.h"

#include "Util/Win32.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

namespace Util {
namespace GuidPlatform {

namespace {

bool ReadUrandom(unsigned char* out, size_t n) {
    int fd = ::open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    size_t got = 0;
    while (got < n) {
        ssize_t r = ::read(fd, out + got, n - got);
        if (r < 0 && errno == EINTR) {
            continue;
        }
        if (r <= 0) {
            if (r == 0) {
                errno = EIO;
            }
            ::close(fd);
            return false;
        }
        got += static_cast<size_t>(r);
    }
    ::close(fd);
    return true;
}

bool RandomBytes(unsigned char* out, size_t n) {
    size_t got = 0;
    while (got < n) {
        ssize_t r = ::getrandom(out + got, n - got, 0);
        if (r < 0 && errno == EINTR) {
            continue;
        }
        if (r < 0) {
            // Kernels without getrandom, or a seccomp filter that refuses it.
            return errno == ENOSYS || errno == EPERM ? ReadUrandom(out, n) : false;
        }
        got += static_cast<size_t>(r);
    }
    return true;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Reads 2 * bytes hexadecimal digits as a big-endian number.
bool ReadHex(const char* text, int digits, unsigned long long& value) {
    value = 0;
    for (int i = 0; i < digits; ++i) {
        int v = HexValue(text[i]);
        if (v < 0) {
            return false;
        }
        value = (value << 4) | static_cast<unsigned>(v);
    }
    return true;
}

} // namespace

bool Create(GUID& guid, DWORD& error) {
    unsigned char bytes[16];
    if (!RandomBytes(bytes, sizeof bytes)) {
        error = Win32::ErrorFromErrno(errno);
        return false;
    }
    std::memcpy(&guid.Data1, bytes, 4);
    std::memcpy(&guid.Data2, bytes + 4, 2);
    std::memcpy(&guid.Data3, bytes + 6, 2);
    std::memcpy(guid.Data4, bytes + 8, 8);
    guid.Data3 = static_cast<WORD>((guid.Data3 & 0x0FFF) | 0x4000);   // version 4
    guid.Data4[0] = static_cast<BYTE>((guid.Data4[0] & 0x3F) | 0x80); // RFC variant
    return true;
}

bool ToText(const GUID& guid, std::string& text) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0],
                  guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    text.assign(buffer, 36);
    return true;
}

bool FromText(const char* text, GUID& guid) {
    if (text == nullptr || std::strlen(text) != 36 || text[8] != '-' || text[13] != '-' ||
        text[18] != '-' || text[23] != '-') {
        return false;
    }
    unsigned long long d1, d2, d3, d4, d5;
    if (!ReadHex(text, 8, d1) || !ReadHex(text + 9, 4, d2) || !ReadHex(text + 14, 4, d3) ||
        !ReadHex(text + 19, 4, d4) || !ReadHex(text + 24, 12, d5)) {
        return false;
    }
    guid.Data1 = static_cast<DWORD>(d1);
    guid.Data2 = static_cast<WORD>(d2);
    guid.Data3 = static_cast<WORD>(d3);
    guid.Data4[0] = static_cast<BYTE>(d4 >> 8);
    guid.Data4[1] = static_cast<BYTE>(d4);
    for (int i = 0; i < 6; ++i) {
        guid.Data4[2 + i] = static_cast<BYTE>(d5 >> (8 * (5 - i)));
    }
    return true;
}

} // namespace GuidPlatform
} // namespace Util
