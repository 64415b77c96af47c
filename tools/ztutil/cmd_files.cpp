// ztutil files: where a file name is redirected, and the find-first listing of a pattern.
#include "tools/ztutil/registry.h"

#include "Util/FileAccReplace.h"
#include "Util/ReDirectFile.h"
#include "Util/Win32.h"

#include <iomanip>
#include <iostream>

using namespace Util::Win32;

namespace {

const char* const kFilesUsage =
    "files [--ini FILE] [--rule PREFIX=DIR]... redirect NAME | ls PATTERN";

// Applies the options that change the rules; returns the index of the first other argument,
// or -1 after reporting a usage problem.
int ApplyRuleOptions(const std::vector<std::string>& args) {
    std::size_t i = 0;
    for (; i + 1 < args.size(); i += 2) {
        const std::string& option = args[i];
        const std::string& value = args[i + 1];
        if (option == "--ini") {
            const Util::Status status = Util::ReDirectFile::LoadRules(value.c_str());
            if (status.Failed()) {
                std::cerr << "ztutil files: " << status.GetStatusMessage().c_str() << "\n";
                return -1;
            }
        } else if (option == "--rule") {
            const std::size_t equals = value.find('=');
            if (equals == std::string::npos ||
                Util::ReDirectFile::AddRule(value.substr(0, equals).c_str(),
                                            value.substr(equals + 1).c_str())
                    .Failed()) {
                ztutil::UsageError(kFilesUsage, "--rule needs PREFIX=DIR, both non-empty");
                return -1;
            }
        } else {
            break;
        }
    }
    return static_cast<int>(i);
}

int Redirect(const std::string& name) {
    Util::TString real;
    std::size_t index = 0;
    if (!Util::ReDirectFile::GetRedirectedFile(real, name.c_str(), index)) {
        std::cout << name << "\n  no rule applies; the name is used as it is\n";
        return 0;
    }
    const Util::ReDirectFile::Rule rule = Util::ReDirectFile::GetRules().at(index);
    std::cout << name << "\n  -> " << real.c_str() << "\n  by rule " << index + 1 << ": "
              << rule.requested.c_str() << " -> " << rule.real.c_str() << "\n";
    return 0;
}

int List(const std::string& pattern) {
    Util::TString real;
    Util::ReDirectFile::GetRedirectedFile(real, pattern.c_str());
    if (real != pattern.c_str())
        std::cout << "(" << pattern << " is redirected to " << real.c_str() << ")\n";
    WIN32_FIND_DATAA data{};
    const HANDLE find = ZtFindFirstFile(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        const DWORD error = Util::Win32::GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES) {
            std::cout << "no match\n";
            return 0;
        }
        std::cerr << "ztutil files: cannot list " << pattern << " (Win32 error " << error << ")\n";
        return 1;
    }
    int count = 0;
    do {
        const bool directory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
        const unsigned long long size =
            (static_cast<unsigned long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
        std::cout << (directory ? 'd' : '-') << (readOnly ? 'r' : 'w') << ' ';
        if (directory)
            std::cout << std::setw(14) << "<DIR>";
        else
            std::cout << std::setw(14) << size;
        std::cout << "  " << data.cFileName << "\n";
        ++count;
    } while (Util::Win32::FindNextFileA(find, &data));
    Util::Win32::FindClose(find);
    std::cout << count << (count == 1 ? " entry\n" : " entries\n");
    return 0;
}

int RunFiles(const std::vector<std::string>& args) {
    const int first = ApplyRuleOptions(args);
    if (first < 0)
        return 2;
    const std::vector<std::string> rest(args.begin() + first, args.end());
    if (rest.size() == 2 && rest[0] == "redirect")
        return Redirect(rest[1]);
    if (rest.size() == 2 && rest[0] == "ls")
        return List(rest[1]);
    return ztutil::UsageError(kFilesUsage, "expected \"redirect NAME\" or \"ls PATTERN\"");
}

} // namespace

ZTUTIL_COMMAND(files, kFilesUsage, "Show where a file name is redirected, or list a pattern",
               RunFiles);
