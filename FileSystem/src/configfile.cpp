#include "Util/ConfigFile.h"

#include "Util/AttributeSet.h"
#include "Util/OpsMacros.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace FileSystem {

namespace {

// The line buffer of the reader: a read takes at most kLineBuffer - 1 characters, and a read
// that consumed exactly that many (line end included) marks the line as too long.
constexpr std::size_t kLineBuffer = 4096;
constexpr std::size_t kTooLong = kLineBuffer - 1;
constexpr std::size_t kChunk = 64 * 1024;
constexpr const char* kMissingSentinel = "qwdjoi1j2890j";

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

ConfigFile::ConfigFile() = default;

ConfigFile::ConfigFile(const char* fileName, const char* commentChars) {
    (void)LoadFile(fileName, commentChars); // the status stays in m_status
}

ConfigFile::ConfigFile(const ConfigFile& other) = default;
ConfigFile& ConfigFile::operator=(const ConfigFile& other) = default;

ConfigFile::ConfigFile(ConfigFile&& other) noexcept
    : m_contents(std::move(other.m_contents)), m_status(other.m_status) {
    other.m_contents.clear();
}

ConfigFile& ConfigFile::operator=(ConfigFile&& other) noexcept {
    if (this != &other) {
        m_contents = std::move(other.m_contents);
        other.m_contents.clear();
        m_status = other.m_status;
    }
    return *this;
}

ConfigFile::~ConfigFile() = default;

Util::Status ConfigFile::LoadFile(const char* fileName, const char* commentChars) {
    ZT_FUNC_OPS();
    m_contents.clear();
    if (commentChars == nullptr)
        commentChars = "";

    // Binary reads with the CRLF translation done here, so both platforms see the same lines.
    std::unique_ptr<std::FILE, FileCloser> file(fileName != nullptr ? std::fopen(fileName, "rb")
                                                                    : nullptr);
    std::unique_ptr<char[]> buffer(new char[kChunk]);
    std::size_t end = file ? std::fread(buffer.get(), 1, kChunk, file.get()) : 0;
    // A directory opens on POSIX but cannot be read: treat it as a file that cannot be opened.
    if (!file || (end == 0 && std::ferror(file.get()))) {
        Util::AttributeSet attributes;
        attributes.SetAttribute("FileName", fileName != nullptr ? fileName : "");
        m_status = ztOps.ReportStatus(-8, __LINE__, attributes, "Could not open file %FileName%");
        return m_status;
    }

    Util::TString sectionName;
    KeyMap* section = nullptr; // made on the first key line after a header, not by the header
    std::size_t pos = 0;
    bool atEof = end < kChunk;
    for (;;) {
        char* start = buffer.get() + pos;
        char* newline = static_cast<char*>(std::memchr(start, '\n', end - pos));
        if (newline == nullptr && !atEof && end - pos < kLineBuffer) {
            // An incomplete line that may still fit: move it to the front and read on.
            std::memmove(buffer.get(), start, end - pos);
            end -= pos;
            pos = 0;
            std::size_t got = std::fread(buffer.get() + end, 1, kChunk - end, file.get());
            end += got;
            atEof = got == 0;
            continue;
        }
        if (newline == nullptr && end == pos)
            break;
        char* lineEnd = newline != nullptr ? newline : buffer.get() + end;
        std::size_t length = static_cast<std::size_t>(lineEnd - start);
        if (newline != nullptr && length > 0 && start[length - 1] == '\r')
            --length; // CR LF reads as one line end
        std::size_t consumed = length + (newline != nullptr ? 1 : 0);
        if (consumed >= kTooLong) {
            ZT_ERROR("File %s had line longer than %d", fileName, static_cast<int>(kLineBuffer));
            m_status = ZT_STATUS(-9, "Exceeded internal buffer length");
            return m_status;
        }
        pos = newline != nullptr ? static_cast<std::size_t>(newline + 1 - buffer.get()) : end;
        start[length] = '\0'; // as the line buffer holds it: an embedded NUL ends the line too

        char first = start[0];
        if (first == '\0' || std::strchr(commentChars, first) != nullptr)
            continue;
        if (first == '[') {
            char* close = std::strchr(start + 1, ']');
            if (close != nullptr)
                *close = '\0';
            sectionName = start + 1;
            section = nullptr;
            continue;
        }
        if (section == nullptr)
            section = &m_contents[sectionName];
        char* equals = std::strchr(start, '=');
        if (equals != nullptr)
            *equals = '\0';
        Util::TString& stored = (*section)[Util::TString(start, std::strlen(start))];
        if (equals != nullptr)
            stored = equals + 1;
        else
            stored.Empty();
    }
    return m_status;
}

ConfigFile::KeyMap& ConfigFile::Section(const char* section) {
    auto found = m_contents.find(NameRef(section));
    return found != m_contents.end() ? found->second : m_contents[Util::TString(section)];
}

Util::TString ConfigFile::GetStringValue(const char* section, const char* key,
                                         const char* defaultValue) {
    const KeyMap& keys = Section(section);
    auto found = keys.find(NameRef(key));
    return found != keys.end() ? found->second : Util::TString(defaultValue);
}

int ConfigFile::GetIntValue(const char* section, const char* key, int defaultValue) {
    Util::TString value = GetStringValue(section, key, kMissingSentinel);
    if (Util::CompareStrings(value, kMissingSentinel, Util::CaseInsensitive) == 0)
        return defaultValue;
    return std::atoi(value);
}

int ConfigFile::GetSectionNames(std::vector<Util::TString>& names) {
    std::vector<Util::TString>().swap(names);
    for (const auto& section : m_contents)
        if (!section.first.IsEmpty())
            names.push_back(section.first);
    return static_cast<int>(names.size());
}

int ConfigFile::GetSectionStrings(const char* section, std::vector<Util::TString>& strings) {
    strings.clear();
    for (const auto& entry : Section(section)) {
        if (entry.second.IsEmpty())
            strings.push_back(entry.first);
        else
            strings.push_back(entry.first + "=" + entry.second);
    }
    return static_cast<int>(strings.size());
}

} // namespace FileSystem
