// A plain INI reader for the INI value filter: [Section] headers and Key=Value lines, names
// compared without case as the Windows profile functions do. It keeps the last file it read and
// reads it again only when its size or modification time changed.
#pragma once

#include <map>
#include <string>

namespace Util {
namespace OpsDetail {

class IniFileReader {
public:
    // True when the file has the key in the section; its value, trimmed, in value.
    bool GetValue(const std::string& path, const std::string& section, const std::string& key,
                  std::string& value);

    // Parses INI text into "section\nkey" (both lower-cased) -> value.
    static std::map<std::string, std::string> Parse(const std::string& text);

private:
    std::string m_path;
    long long m_size = -1;
    long long m_modified = 0;
    std::map<std::string, std::string> m_values;
};

} // namespace OpsDetail
} // namespace Util
