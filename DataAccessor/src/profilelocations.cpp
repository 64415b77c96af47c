#include "Util/ProfileLocations.h"

#include "DataAccessor/src/legacyprofile_platform.h"
#include "DataAccessor/src/profilelocations_platform.h"
#include "DataAccessor/src/profilelog.h"

#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

namespace Util {
namespace ProfileLocations {

namespace {

struct Locations {
    std::mutex mutex;
    bool resolved = false;
    std::string program, data;
};

Locations& State() {
    static Locations state;
    return state;
}

std::string WithSeparator(std::string dir) {
    if (!dir.empty() && dir.back() != Platform::kPathSeparator && dir.back() != '/')
        dir += Platform::kPathSeparator;
    return dir;
}

std::string Derive(const std::string& program) {
    const std::string sep(1, Platform::kPathSeparator);
    const std::string from = sep + "ZTEXE" + sep, to = sep + "ZTDATA" + sep;
    std::string data = program;
    std::string::size_type at = data.find(from);
    if (at != std::string::npos)
        data.replace(at, from.size(), to);
    return data;
}

std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::string(value) : std::string();
}

// Resolves both directories once (environment, else the executable's folder); the caller holds
// the mutex.
void Resolve(Locations& state) {
    if (state.resolved)
        return;
    std::string program = FromEnvironment("ZTUTIL_PROGRAM_DIR");
    if (program.empty()) {
        program = Platform::ExecutablePath();
        std::string::size_type slash =
            program.find_last_of(std::string("/") + Platform::kPathSeparator);
        program = slash == std::string::npos ? std::string() : program.substr(0, slash + 1);
    }
    state.program = WithSeparator(program);
    std::string data = FromEnvironment("ZTUTIL_DATA_DIR");
    state.data = data.empty() ? Derive(state.program) : WithSeparator(data);
    state.resolved = true;
}

} // namespace

TString GetProgramDirectory() {
    Locations& state = State();
    std::lock_guard<std::mutex> lock(state.mutex);
    Resolve(state);
    return TString(state.program);
}

TString GetDataDirectory() {
    Locations& state = State();
    std::lock_guard<std::mutex> lock(state.mutex);
    Resolve(state);
    return TString(state.data);
}

TString GetReleaseDataDirectory() {
    std::string dir = FromEnvironment("ZTUTIL_RELEASE_DATA_DIR");
    if (dir.empty()) {
        dir = Platform::SharedAppDataDirectory();
        if (!dir.empty())
            dir += "Tallywick";
    }
    return TString(WithSeparator(dir));
}

TString GetFileLocationsPath() {
    return TString(std::string(GetDataDirectory().c_str()) + "FileLocations.ini");
}

TString DeriveDataDirectory(const char* programDirectory) {
    return TString(Derive(programDirectory != nullptr ? programDirectory : ""));
}

TString ReadFileLocations(const char* section, const char* key, const char* defaultValue) {
    const TString path = GetFileLocationsPath();
    std::vector<char> buffer(1024);
    DWORD length = Norvane::Utilities::Platform::ProfileGetString(
        section, key, defaultValue != nullptr ? defaultValue : "", buffer.data(),
        static_cast<DWORD>(buffer.size()), path.c_str());
    return TString(buffer.data(), length);
}

void SetDirectories(const char* programDirectory, const char* dataDirectory) {
    {
        Locations& state = State();
        std::lock_guard<std::mutex> lock(state.mutex);
        state.resolved = false;
        const bool hasProgram = programDirectory != nullptr && *programDirectory != '\0';
        const bool hasData = dataDirectory != nullptr && *dataDirectory != '\0';
        if (hasProgram || hasData) {
            Resolve(state);
            if (hasProgram)
                state.program = WithSeparator(programDirectory);
            state.data = hasData ? WithSeparator(dataDirectory) : Derive(state.program);
        }
    }
    Norvane::Utilities::ProfileLog::ForgetSwitches();
}

} // namespace ProfileLocations
} // namespace Util
