#include "OSIsolation/src/mounttable_posix.h"

#include "Util/StringHelpers.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace Util {
namespace Win32 {

namespace {

// Mount points and sources escape blanks and backslashes as \ooo.
std::string Unescape(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '3') {
            out += static_cast<char>(((text[i + 1] - '0') << 6) | ((text[i + 2] - '0') << 3) |
                                     (text[i + 3] - '0'));
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

bool Contains(const std::string& mountPoint, const std::string& path) {
    if (mountPoint == "/")
        return !path.empty() && path[0] == '/';
    return path.compare(0, mountPoint.size(), mountPoint) == 0 &&
           (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

// An absolute, lexically normal form of a path that need not exist.
std::string Absolute(const std::string& path) {
    if (char* resolved = realpath(path.c_str(), nullptr)) {
        std::string text(resolved);
        std::free(resolved);
        return text;
    }
    std::string full = path;
    if (full.empty() || full[0] != '/') {
        char cwd[4096];
        if (getcwd(cwd, sizeof cwd) == nullptr)
            return std::string();
        full = std::string(cwd) + "/" + full;
    }
    std::vector<std::string> parts;
    std::stringstream in(full);
    std::string part;
    while (std::getline(in, part, '/')) {
        if (part.empty() || part == ".")
            continue;
        if (part == "..") {
            if (!parts.empty())
                parts.pop_back();
        } else {
            parts.push_back(part);
        }
    }
    std::string out;
    for (const std::string& p : parts)
        out += "/" + p;
    return out.empty() ? "/" : out;
}

std::string Backslashed(std::string text) {
    for (char& c : text)
        if (c == '/')
            c = '\\';
    return text;
}

} // namespace

bool MountEntry::IsNetworkShare() const {
    return fsType == "cifs" || fsType == "smb3" || fsType == "smbfs";
}

MountTable::MountTable(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        // id parent major:minor root mount-point options [optional...] - type source super
        std::istringstream fields(line);
        std::string field, mountPoint;
        for (int i = 0; i < 5 && fields >> field; ++i)
            mountPoint = field;
        while (fields >> field && field != "-") {
        }
        MountEntry entry;
        if (field != "-" || !(fields >> entry.fsType >> entry.source))
            continue;
        entry.mountPoint = Unescape(mountPoint);
        entry.source = Unescape(entry.source);
        m_entries.push_back(entry);
    }
}

const MountEntry* MountTable::FindMount(const std::string& absolutePath) const {
    const MountEntry* best = nullptr;
    for (const MountEntry& entry : m_entries)
        if (Contains(entry.mountPoint, absolutePath) &&
            (best == nullptr || entry.mountPoint.size() >= best->mountPoint.size()))
            best = &entry;
    return best;
}

const MountEntry* MountTable::FindShare(const std::string& unc) const {
    // \\server\share\... -> //server/share
    std::string wanted = "//";
    std::size_t server = unc.find_first_of("\\/", 2);
    if (server == std::string::npos)
        return nullptr;
    std::size_t share = unc.find_first_of("\\/", server + 1);
    wanted += unc.substr(2, server - 2) + "/" + unc.substr(server + 1, share - server - 1);
    const MountEntry* found = nullptr;
    for (const MountEntry& entry : m_entries) {
        std::string source = entry.source;
        while (source.size() > 2 && source.back() == '/')
            source.pop_back();
        if (entry.IsNetworkShare() &&
            CompareStrings(source.c_str(), wanted.c_str(), CaseInsensitive) == 0)
            found = &entry;
    }
    return found;
}

bool MountTable::UniversalName(const std::string& path, std::string& connection,
                               std::string& rest) const {
    std::string absolute = Absolute(path);
    const MountEntry* mount = absolute.empty() ? nullptr : FindMount(absolute);
    if (mount == nullptr || !mount->IsNetworkShare())
        return false;
    std::string source = mount->source;
    while (source.size() > 2 && source.back() == '/')
        source.pop_back();
    connection = Backslashed(source);
    rest = Backslashed(mount->mountPoint == "/" ? absolute
                                                : absolute.substr(mount->mountPoint.size()));
    if (rest == "\\")
        rest.clear();
    return true;
}

} // namespace Win32
} // namespace Util
