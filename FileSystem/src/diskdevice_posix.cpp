// POSIX: one drive, "C", whose current directory is the process's.
#include "FileSystem/src/diskdevice_platform.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace FileSystem {
namespace DiskPlatform {

namespace {

Util::TString Dotted(const struct sockaddr* address) {
    char text[INET_ADDRSTRLEN] = {};
    const auto* ipv4 = reinterpret_cast<const struct sockaddr_in*>(address);
    if (inet_ntop(AF_INET, &ipv4->sin_addr, text, sizeof text) == nullptr)
        return Util::TString();
    return Util::TString(text);
}

} // namespace

char CurrentDrive() {
    return 'C';
}

bool DriveExists(char letter) {
    return letter == 'C';
}

Util::TString DriveDirectory(char) {
    std::string directory(4096, '\0');
    while (getcwd(&directory[0], directory.size()) == nullptr) {
        if (errno != ERANGE)
            return Util::TString();
        directory.resize(directory.size() * 2);
    }
    directory.resize(std::strlen(directory.c_str()));
    if (directory.empty() || directory.back() != '/')
        directory += '/';
    return Util::TString(directory);
}

bool PathExists(const char* path) {
    std::string native(path);
    for (char& c : native)
        if (c == '\\')
            c = '/';
    struct stat info;
    return stat(native.c_str(), &info) == 0;
}

Util::TString LocalMachineName() {
    char host[256] = {};
    if (gethostname(host, sizeof host - 1) != 0)
        return Util::TString();
    return Util::TString(host);
}

Util::TString AddressOf(const char* machine, bool local) {
    if (local) {
        // The first configured address that is not the loopback one.
        struct ifaddrs* list = nullptr;
        Util::TString found;
        if (getifaddrs(&list) == 0) {
            for (struct ifaddrs* entry = list; entry != nullptr && found.IsEmpty();
                 entry = entry->ifa_next)
                if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET &&
                    ntohl(
                        reinterpret_cast<struct sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr) >>
                            24 !=
                        127)
                    found = Dotted(entry->ifa_addr);
            freeifaddrs(list);
        }
        if (!found.IsEmpty())
            return found;
    }
    struct addrinfo hints = {};
    hints.ai_family = AF_INET;
    struct addrinfo* result = nullptr;
    if (machine == nullptr || *machine == '\0' ||
        getaddrinfo(machine, nullptr, &hints, &result) != 0)
        return local ? Util::TString("127.0.0.1") : Util::TString();
    Util::TString text = Dotted(result->ai_addr);
    freeaddrinfo(result);
    return text;
}

} // namespace DiskPlatform
} // namespace FileSystem
