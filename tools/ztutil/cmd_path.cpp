// ztutil's path command: what FilePath and GetFileSystemFormat say about a path.
#include "tools/ztutil/registry.h"

#include <iostream>
#include <string>
#include <vector>

#include "Util/FilePath.h"
#include "Util/Win32Volume.h"

namespace {

const char* const kUsage = "path [--smb-conf FILE] PATH";

const char* FormatName(FileSystem::FileSystemFormat format) {
    static const char* const kNames[] = {"unknown", "FAT16", "FAT32", "NTFS", "WINFS"};
    return kNames[format];
}

int RunPath(const std::vector<std::string>& args) {
    std::vector<std::string> rest = args;
    if (rest.size() == 3 && rest[0] == "--smb-conf") {
        Util::Win32::SetNetworkTables(rest[1].c_str(), nullptr);
        rest.erase(rest.begin(), rest.begin() + 2);
    }
    if (rest.size() != 1)
        return ztutil::UsageError(kUsage, "expected one path");
    FileSystem::FilePath path(rest[0].c_str());
    std::cout << "path:        " << path.GetPath() << "\n";
    Util::TString server, share, remainder;
    if (path.SplitUNCName(server, share, remainder)) {
        std::cout << "UNC server:  " << server << "\nUNC share:   " << share
                  << "\nUNC rest:    " << remainder << "\n";
        Util::TString local;
        Util::Status status = path.ConvertUNCToLocalPath(local);
        if (status.Succeeded())
            std::cout << "local path:  " << local << "\n";
        else
            std::cout << "local path:  (" << status.GetStatusMessage() << ")\n";
    } else {
        std::cout << "UNC:         no\n";
    }
    Util::TString universal;
    switch (path.GetUNCName(universal)) {
    case FileSystem::FilePath::CONVERTED:
        std::cout << "universal:   " << universal << "\n";
        break;
    case FileSystem::FilePath::NOT_NETWORK_PATH:
        std::cout << "universal:   (not on a network connection)\n";
        break;
    default:
        std::cout << "universal:   (failed)\n";
        break;
    }
    std::cout << "machine:     " << path.GetMachineName() << " " << path.GetMachineIPAddress()
              << "\n";
    std::cout << "file system: " << FormatName(FileSystem::GetFileSystemFormat(path.GetPath()))
              << "\n";
    return 0;
}

} // namespace

ZTUTIL_COMMAND(path, kUsage,
               "prints a path's UNC parts, universal name, local path of a share, file system",
               RunPath);
