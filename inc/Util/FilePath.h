// FileSystem::FilePath: one path text and what can be asked about it; GetFileSystemFormat.
//
// Contract: the constructor makes a relative path absolute by putting the current directory of
// its drive in front (a leading ".\" or "./" is dropped; rooted and UNC paths stay as given).
// A UNC path is at least 5 characters, starts with two backslashes and has a backslash at
// position 2 or later; the server ends at that backslash ("\\srv" of "\\srv\data\x"), the share
// at the next one or the end ("data"), and the rest follows it ("x").
//
// GetUNCName gives the universal name (2), caching it: a UNC path is its own, another path
// asks the network layer; 0 when the path is on no network connection, 1 when that failed.
// ConvertUNCToLocalPath turns "\\server\share\rest" into the share's directory followed by rest;
// meant for shares of this machine. The share's directory is trimmed of trailing white space
// and gets a separator before rest: a backslash, or "/" (with rest's backslashes turned into
// "/") when the directory is a POSIX path. Failures: the generic failed status for a path that
// is not UNC or a share query that fails (access denied for error 5; the error is in the
// attribute "Win32Error"), the system-configuration status when the network API is missing.
//
// CompareFilePaths tells whether two names name one file: equal texts ignoring case, else equal
// short forms, else equal long forms, else equal final paths of the open files. On Windows the
// forms compare ignoring case and the two handles of the last step stay open. On POSIX the
// short and long forms are the canonical paths, the forms are equal when they are the same text
// or name the same device and inode (so a symbolic link, ".." and a hard link all compare
// equal), and nothing is left open. FindMatchingFiles lists every entry the redirected
// find-first search returns for a wildcard, "." and ".." included, each prefixed with the
// pattern's directory (up to its last backslash, or on POSIX its last separator of either kind).
//
// GetFileSystemFormat names the file system of the volume holding "X:\..." or
// "\\server\share\..." (and, on POSIX, an absolute path), or FSF_UNKNOWN.
// One thread at a time.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/TString.h"

#include <vector>

namespace FileSystem {

enum FileSystemFormat {
    FSF_UNKNOWN = 0,
    FSF_FAT16 = 1,
    FSF_FAT32 = 2,
    FSF_NTFS = 3,
    FSF_WINFS = 4
};

class ZTUTIL_API FilePath {
public:
    enum ConvertResult { NOT_NETWORK_PATH = 0, CONVERT_FAILED = 1, CONVERTED = 2 };

    FilePath(const char* path);
    FilePath(const FilePath& other);
    FilePath& operator=(const FilePath& other);
    ~FilePath();

    const char* GetPath() const { return m_path; }
    operator const char*() const { return m_path; }

    bool IsPathUNC() const;
    bool HasDriveLetter() const;
    char GetDriveLetter() const;
    Util::TString GetUNCServerName() const;
    Util::TString GetUNCShareName() const;
    Util::TString GetUNCPathName() const;
    bool SplitUNCName(Util::TString& server, Util::TString& share, Util::TString& rest) const;
    ConvertResult GetUNCName(Util::TString& uncName);
    Util::Status ConvertUNCToLocalPath(Util::TString& localPath) const;
    Util::TString GetMachineName() const;
    Util::TString GetMachineIPAddress() const;

    static bool CompareFilePaths(const char* a, const char* b);
    static int FindMatchingFiles(const char* pattern, std::vector<Util::TString>& files);

private:
    void CopyFrom(const FilePath& other);
    void FixupCurrentWorkingDirectory();
    std::size_t ServerEnd() const;
    std::size_t ShareEnd() const;

    Util::TString m_path;
    Util::TString m_uncName;
};

// The share query of ConvertUNCToLocalPath, for the NT family and its successors.
ZTUTIL_API Util::Status ConvertUNCToLocalPathNTLater(const Util::TString& server,
                                                     const Util::TString& share,
                                                     const Util::TString& rest,
                                                     Util::TString& localPath);

ZTUTIL_API FileSystemFormat GetFileSystemFormat(Util::TString path);

} // namespace FileSystem
