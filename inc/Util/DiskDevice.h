// FileSystem::DiskDevice: the drive (or network share) a path lives on.
//
// Contract: built from a drive letter or from a path. A letter is valid when the system has that
// drive; a path is valid when it exists (a UNC path: when its share can be reached). The current
// working directory is the drive's own, without the drive letter and ending in a separator
// ("\Work\" on Windows, "/home/me/" on POSIX), ready to be put in front of a relative name after
// a drive letter. The machine name is the server of a network path, otherwise this computer's
// name; the IP address is that machine's, dotted (IPv4), or empty when it cannot be resolved.
//
// POSIX has no drive letters: the whole tree counts as one drive, reported as "C" (the current
// drive), and only that letter is valid. A path is a network path when it lies on a CIFS/SMB
// mount or is a UNC text.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

namespace FileSystem {

class ZTUTIL_API DiskDevice {
public:
    explicit DiskDevice(char driveLetter);
    explicit DiskDevice(const char* path);

    bool IsValid() const { return m_valid; }
    // Upper case, or 0 for a UNC path.
    char GetDriveLetter() const { return m_driveLetter; }
    Util::TString GetCurrentWorkingDirectory() const;
    Util::TString GetMachineName() const;
    Util::TString GetMachineIPAddress() const;

    // The letter of the process's current drive.
    static char GetCurrentDriveLetter();

private:
    char m_driveLetter = 0;
    bool m_valid = false;
    Util::TString m_server; // set for a network path
};

} // namespace FileSystem
