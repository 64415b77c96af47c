// Winsock's headers come before <windows.h>, which the library's headers include.
#include <winsock2.h>
#include <ws2tcpip.h>

#include "FileSystem/src/diskdevice_platform.h"

#include <windows.h>

#include <direct.h>

#include <string>

namespace FileSystem {
namespace DiskPlatform {

char CurrentDrive() {
    int drive = _getdrive(); // 1 is A
    return drive > 0 ? static_cast<char>('A' + drive - 1) : 'C';
}

bool DriveExists(char letter) {
    return letter >= 'A' && letter <= 'Z' && (GetLogicalDrives() & (1u << (letter - 'A'))) != 0;
}

Util::TString DriveDirectory(char letter) {
    char buffer[MAX_PATH * 4];
    if (_getdcwd(letter - 'A' + 1, buffer, sizeof buffer) == nullptr)
        return Util::TString();
    std::string directory(buffer);
    if (directory.size() >= 2 && directory[1] == ':')
        directory.erase(0, 2);
    if (directory.empty() || directory.back() != '\\')
        directory += '\\';
    return Util::TString(directory);
}

bool PathExists(const char* path) {
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

Util::TString LocalMachineName() {
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    if (!GetComputerNameA(name, &size))
        return Util::TString();
    return Util::TString(name);
}

Util::TString AddressOf(const char* machine, bool) {
    WSADATA data;
    if (machine == nullptr || *machine == '\0' || WSAStartup(MAKEWORD(2, 2), &data) != 0)
        return Util::TString();
    Util::TString text;
    struct addrinfo hints = {};
    hints.ai_family = AF_INET;
    struct addrinfo* result = nullptr;
    if (getaddrinfo(machine, nullptr, &hints, &result) == 0) {
        char dotted[INET_ADDRSTRLEN] = {};
        auto* ipv4 = reinterpret_cast<struct sockaddr_in*>(result->ai_addr);
        if (inet_ntop(AF_INET, &ipv4->sin_addr, dotted, sizeof dotted) != nullptr)
            text = dotted;
        freeaddrinfo(result);
    }
    WSACleanup();
    return text;
}

} // namespace DiskPlatform
} // namespace FileSystem
