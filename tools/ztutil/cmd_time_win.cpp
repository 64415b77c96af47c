#include "tools/ztutil/cmd_time_platform.h"

#include "Util/ProcessInfo.h"
#include "Util/Win32Types.h"

namespace ztutil {

namespace {

// Quotes one argument the way the C runtime's command-line parser reads it back.
void AppendQuoted(std::string& line, const std::string& arg) {
    if (!arg.empty() && arg.find_first_of(" \t\"") == std::string::npos) {
        line += arg;
        return;
    }
    line += '"';
    std::size_t backslashes = 0;
    for (char c : arg) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        line.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        line += c;
    }
    line.append(backslashes * 2, '\\');
    line += '"';
}

} // namespace

bool RunChild(const std::vector<std::string>& command, ChildRun& run, std::string& error) {
    std::string line;
    for (const auto& arg : command) {
        if (!line.empty())
            line += ' ';
        AppendQuoted(line, arg);
    }
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!::CreateProcessA(nullptr, &line[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                          &process)) {
        error = "CreateProcess failed with error " + std::to_string(::GetLastError());
        return false;
    }
    ::WaitForSingleObject(process.hProcess, INFINITE);
    run.pageFaults = Util::GetProcessPageFaultCount(process.hProcess);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process.hProcess, &exitCode);
    run.exitCode = int(exitCode);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return true;
}

} // namespace ztutil
