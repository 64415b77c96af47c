#include "Util/FilePath.h"

#include "Util/OpsMacros.h"
#include "Util/StringHelpers.h"
#include "Util/Win32.h"
#include "Util/Win32Volume.h"

#include <regex>

namespace FileSystem {

namespace {
// Longer texts are no path any volume takes; they are not handed to the matcher at all.
constexpr std::size_t kLongestPath = 32767;
} // namespace

FileSystemFormat GetFileSystemFormat(Util::TString path) {
    ZT_FUNC_OPS();
    Util::ErrorStateGuard keepErrors;
    Util::Status status = Util::Status::GetSucceeded();
    FileSystemFormat format = FSF_UNKNOWN;
    try {
        static const std::regex drive("([a-zA-Z]:[\\\\])(.*)", std::regex::egrep);
        static const std::regex share("([\\\\]+[^\\\\]+[\\\\][^\\\\]+[\\\\])(.*)",
                                      std::regex::egrep);
        std::smatch match;
        Util::TString root;
        const std::string text = path.ToStdString();
        if (text.size() > kLongestPath)
            root.Empty();
        else if (std::regex_match(text, match, drive) || std::regex_match(text, match, share))
            root = match[1].str();
        else if (!text.empty() && text[0] == '/')
            root = path; // a POSIX path: its own volume
        if (!root.IsEmpty()) {
            char name[32] = {};
            if (Util::Win32::GetVolumeInformationA(root, nullptr, 0, nullptr, nullptr, nullptr,
                                                   name, sizeof name)) {
                static const char* const kNames[] = {"FAT16", "FAT32", "NTFS", "WINFS"};
                for (int i = 0; i < 4; ++i)
                    if (Util::CompareStrings(name, kNames[i], Util::CaseInsensitive) == 0)
                        format = static_cast<FileSystemFormat>(i + 1);
            } else {
                status = Util::Status::GetFailed();
                status.SetAttribute("Win32Error", static_cast<long>(Util::Win32::GetLastError()));
            }
        }
    } catch (const std::regex_error&) {
        status = Util::Status::GetFailed();
        format = FSF_UNKNOWN;
    }
    (void)ZT_REPORT(status);
    return format;
}

} // namespace FileSystem
