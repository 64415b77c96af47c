// What the disk devices ask of the system.
#pragma once

#include "Util/TString.h"

namespace FileSystem {
namespace DiskPlatform {

char CurrentDrive();
bool DriveExists(char letter);
// The drive's current directory without its letter, ending in a separator; empty on failure.
Util::TString DriveDirectory(char letter);
bool PathExists(const char* path);
Util::TString LocalMachineName();
// The dotted IPv4 address of a machine (this one when local is true); empty when unknown.
Util::TString AddressOf(const char* machine, bool local);

} // namespace DiskPlatform
} // namespace FileSystem
