#include "OperationsManager/src/opsinifile.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace Util {
namespace OpsDetail {

namespace {

std::string Trim(const std::string& text) {
    std::size_t begin = 0, end = text.size();
    while (begin < end && std::isspace(static_cast<unsigned char>(text[begin])))
        ++begin;
    while (end > begin && std::isspace(static_cast<unsigned char>(text[end - 1])))
        --end;
    return text.substr(begin, end - begin);
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

std::map<std::string, std::string> IniFileReader::Parse(const std::string& text) {
    std::map<std::string, std::string> values;
    std::istringstream in(text);
    std::string line, section;
    while (std::getline(in, line)) {
        line = Trim(line);
        if (line.empty() || line[0] == ';' || line[0] == '#')
            continue;
        if (line[0] == '[') {
            const std::size_t close = line.find(']');
            section = Lower(
                Trim(line.substr(1, close == std::string::npos ? std::string::npos : close - 1)));
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string key = Lower(Trim(line.substr(0, equals)));
        // The first occurrence wins, as with the Win32 profile functions.
        values.emplace(section + "\n" + key, Trim(line.substr(equals + 1)));
    }
    return values;
}

bool IniFileReader::GetValue(const std::string& path, const std::string& section,
                             const std::string& key, std::string& value) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) {
        m_values.clear();
        m_size = -1;
        return false;
    }
    const auto modified = std::filesystem::last_write_time(path, error);
    const long long stamp = error ? 0 : static_cast<long long>(modified.time_since_epoch().count());
    if (path != m_path || static_cast<long long>(size) != m_size || stamp != m_modified) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        m_values = Parse(text.str());
        m_path = path;
        m_size = static_cast<long long>(size);
        m_modified = stamp;
    }
    const auto it = m_values.find(Lower(section) + "\n" + Lower(key));
    if (it == m_values.end())
        return false;
    value = it->second;
    return true;
}

} // namespace OpsDetail
} // namespace Util
