#include "DataAccessor/src/profilelog.h"

#include "DataAccessor/src/profilelocations_platform.h"
#include "DataAccessor/src/repositoryfile_platform.h"
#include "Util/ProfileLocations.h"
#include "Util/Win32.h"

#include <atomic>
#include <ctime>
#include <mutex>

namespace Norvane {
namespace Utilities {
namespace ProfileLog {

using namespace Util::Win32;

namespace {

// -1: not read yet; 0 off; 1 on.
std::atomic<int> g_legacyMode{-1}, g_logOn{-1}, g_releaseMode{-1};

bool ReadSwitch(std::atomic<int>& cached, const char* key) {
    int value = cached.load(std::memory_order_acquire);
    if (value < 0) {
        Util::ErrorStateGuard keepErrors;
        value = Util::ProfileLocations::ReadFileLocations("debugging", key, "") == "1" ? 1 : 0;
        cached.store(value, std::memory_order_release);
    }
    return value == 1;
}

std::mutex& LogMutex() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

bool IsIniLegacyMode() {
    return ReadSwitch(g_legacyMode, "IniLegacyMode");
}
bool IsIniLogOn() {
    return ReadSwitch(g_logOn, "IsIniLogOn");
}
bool IsDataDirectoryReleaseMode() {
    return ReadSwitch(g_releaseMode, "DataDirectoryReleaseMode");
}

void ForgetSwitches() {
    g_legacyMode.store(-1);
    g_logOn.store(-1);
    g_releaseMode.store(-1);
}

std::string LogFilePath() {
    const Util::TString dir = IsDataDirectoryReleaseMode()
                                  ? Util::ProfileLocations::GetReleaseDataDirectory()
                                  : Util::ProfileLocations::GetDataDirectory();
    return std::string(dir.c_str()) + "LOG" + Util::Platform::kPathSeparator + "IniShimLogger.txt";
}

void Write(const char* sourceFile, int line, const std::string& message) {
    if (!IsIniLogOn())
        return;
    Util::ErrorStateGuard keepErrors;
    std::time_t now = std::time(nullptr);
    std::tm local{};
    Platform::LocalTime(now, local);
    char date[16], time[16];
    std::strftime(date, sizeof date, "%m/%d/%y", &local);
    std::strftime(time, sizeof time, "%H:%M:%S", &local);
    std::string record = sourceFile != nullptr ? sourceFile : "";
    record += " (" + std::to_string(line) + ") :  MESSAGE: " + date + " -  " + time + "\t --" +
              message + " ::: " + Platform::kLineBreak;
    std::lock_guard<std::mutex> lock(LogMutex());
    Platform::AppendToFile(LogFilePath(), record);
}

} // namespace ProfileLog
} // namespace Utilities
} // namespace Norvane
