#include "Util/DiskDevice.h"

#include "FileSystem/src/diskdevice_platform.h"
#include "Util/Win32.h"
#include "Util/Win32Volume.h"

#include <cctype>

namespace FileSystem {

using namespace Util::Win32;

DiskDevice::DiskDevice(char driveLetter)
    : m_driveLetter(static_cast<char>(std::toupper(static_cast<unsigned char>(driveLetter)))) {
    m_valid = std::isalpha(static_cast<unsigned char>(driveLetter)) &&
              DiskPlatform::DriveExists(m_driveLetter);
}

DiskDevice::DiskDevice(const char* path) {
    Util::ErrorStateGuard keepErrors;
    Util::TString text(path);
    if (text.GetLength() > 2 && text[0] == '\\' && text[1] == '\\') {
        std::size_t end = text.Find('\\', 2);
        m_server = text.Mid(2, end == Util::TString::npos ? Util::TString::npos : end - 2);
        m_valid = !m_server.IsEmpty() && DiskPlatform::PathExists(text);
        return;
    }
    m_driveLetter = text.GetLength() >= 2 && text[1] == ':'
                        ? static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])))
                        : DiskPlatform::CurrentDrive();
    m_valid = !text.IsEmpty() && DiskPlatform::PathExists(text);
    char buffer[520];
    DWORD size = sizeof buffer;
    if (m_valid && Util::Win32::WNetGetUniversalNameA(text, UNIVERSAL_NAME_INFO_LEVEL, buffer,
                                                      &size) == ERROR_SUCCESS) {
        Util::TString universal(reinterpret_cast<UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName);
        std::size_t end = universal.Find('\\', 2);
        m_server = universal.Mid(2, end == Util::TString::npos ? Util::TString::npos : end - 2);
    }
}

Util::TString DiskDevice::GetCurrentWorkingDirectory() const {
    if (!m_valid || m_driveLetter == 0)
        return Util::TString();
    return DiskPlatform::DriveDirectory(m_driveLetter);
}

Util::TString DiskDevice::GetMachineName() const {
    if (!m_valid)
        return Util::TString();
    return m_server.IsEmpty() ? DiskPlatform::LocalMachineName() : m_server;
}

Util::TString DiskDevice::GetMachineIPAddress() const {
    if (!m_valid)
        return Util::TString();
    return m_server.IsEmpty() ? DiskPlatform::AddressOf(DiskPlatform::LocalMachineName(), true)
                              : DiskPlatform::AddressOf(m_server, false);
}

char DiskDevice::GetCurrentDriveLetter() {
    return DiskPlatform::CurrentDrive();
}

} // namespace FileSystem
