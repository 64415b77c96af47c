// The text of one INI file as the profile functions see it: lines kept exactly as they were
// read, so that an edit changes only the lines it must and the rest of the file is written back
// byte for byte. Portable (no file access): the POSIX profile functions load and save it.
#pragma once

#include <string>
#include <vector>

namespace Util {
namespace Win32 {
namespace Profile {

class ProfileText {
public:
    // Bytes of a file: UTF-16 LE when they start with its byte order mark, otherwise 8-bit text.
    static ProfileText Parse(const std::string& bytes);
    // The file's bytes again, in the encoding it was read in.
    std::string Serialize() const;

    // Names are given as the caller passed them (surrounding spaces are ignored).
    bool FindValue(const std::string& section, const std::string& key, std::string& value) const;
    std::vector<std::string> SectionNames() const;
    // False where the section does not exist.
    bool KeyNames(const std::string& section, std::vector<std::string>& names) const;
    bool SectionEntries(const std::string& section, std::vector<std::string>& entries) const;

    // Edits; each returns whether the text changed.
    bool SetValue(const std::string& section, const std::string& key, const std::string& value);
    bool RemoveKey(const std::string& section, const std::string& key);
    bool RemoveSection(const std::string& section);
    bool ReplaceSection(const std::string& section, const std::vector<std::string>& entries);

private:
    struct Line {
        std::string text; // without its line break (UTF-8 where the file is UTF-16)
        std::string eol;  // "\r\n", "\n", "\r" or "" for a last line without one
    };

    // Index of the header of the first section with this name, or npos.
    std::size_t FindSection(const std::string& name) const;
    // One past the last line of the section whose header is at index header.
    std::size_t SectionEnd(std::size_t header) const;
    std::size_t FindKey(std::size_t header, const std::string& key) const;
    void InsertLines(std::size_t at, const std::vector<std::string>& texts);
    void AppendSection(const std::string& section, const std::vector<std::string>& texts);
    std::string NewLineBreak() const;

    std::vector<Line> m_lines;
    bool m_utf16 = false;
    std::string m_oddByte; // a trailing byte of a UTF-16 file with an odd length
};

} // namespace Profile
} // namespace Win32
} // namespace Util
