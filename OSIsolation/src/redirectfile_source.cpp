#include "OSIsolation/src/redirectfile_source.h"

#include "Util/Win32.h"

namespace Util {
namespace RedirectSource {

namespace {

const char* const kSection = "Redirect";

// One profile-string read into a buffer that grows until the text fits. Without a key the text
// is the list of the section's keys, each ended by a null.
std::string Read(const char* key, const char* iniPath) {
    std::string buffer(1024, '\0');
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        const DWORD length =
            Win32::GetPrivateProfileStringA(kSection, key, "", &buffer[0], size, iniPath);
        // A text that did not fit comes back size - 1 long (size - 2 for a list of keys).
        const DWORD full = key != nullptr ? size - 1 : size - 2;
        if (length < full || buffer.size() >= (1u << 24)) {
            buffer.resize(length);
            return buffer;
        }
        buffer.resize(buffer.size() * 4);
    }
}

} // namespace

TString DefaultIniPath() {
    return TString();
}

std::vector<Entry> ReadRedirectSection(const char* iniPath) {
    std::vector<Entry> entries;
    const std::string keys = Read(nullptr, iniPath);
    for (std::size_t at = 0; at < keys.size();) {
        const std::size_t end = keys.find('\0', at);
        const std::string key = keys.substr(at, end == std::string::npos ? end : end - at);
        at = end == std::string::npos ? keys.size() : end + 1;
        if (key.empty())
            continue;
        entries.push_back(Entry{key.c_str(), Read(key.c_str(), iniPath).c_str()});
    }
    return entries;
}

} // namespace RedirectSource
} // namespace Util
