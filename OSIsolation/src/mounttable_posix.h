// The mount table of this process (/proc/self/mountinfo or a copy), for the volume and
// universal-name queries.
#pragma once

#include <string>
#include <vector>

namespace Util {
namespace Win32 {

// The mount table in use (SetNetworkTables may point elsewhere).
std::string MountTablePath();

struct MountEntry {
    std::string mountPoint;
    std::string fsType;
    std::string source;
    bool IsNetworkShare() const;
};

class MountTable {
public:
    explicit MountTable(const std::string& path);

    // The mount that holds an absolute path: the longest mount point, the later of equals.
    const MountEntry* FindMount(const std::string& absolutePath) const;
    // The CIFS/SMB mount of "\\server\share\..." (the source //server/share, case-blind).
    const MountEntry* FindShare(const std::string& unc) const;
    // "\\server\share" and "\rest" of a path on a CIFS/SMB mount; false when it is on none.
    bool UniversalName(const std::string& path, std::string& connection, std::string& rest) const;

private:
    std::vector<MountEntry> m_entries;
};

} // namespace Win32
} // namespace Util
