#include "profiletext.h"

#include "Util/StringHelpers.h"

#include <cstdint>
#include <string_view>

namespace Util {
namespace Win32 {
namespace Profile {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\v';
}

std::string_view TrimBlanks(std::string_view s) {
    while (!s.empty() && IsBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// Names given by the caller lose only their surrounding spaces, not tabs.
std::string_view TrimSpaces(std::string_view s) {
    while (!s.empty() && s.front() == ' ')
        s.remove_prefix(1);
    while (!s.empty() && s.back() == ' ')
        s.remove_suffix(1);
    return s;
}

char Fold(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(b[i]))
            return false;
    return true;
}

enum class Kind { Blank, Comment, Section, Entry, Other };

struct Parsed {
    Kind kind = Kind::Blank;
    std::string_view name;
    std::string_view value;
};

Parsed Classify(std::string_view text) {
    Parsed p;
    std::string_view t = TrimBlanks(text);
    if (t.empty())
        return p;
    if (t.front() == ';') {
        p.kind = Kind::Comment;
    } else if (t.front() == '[') {
        // The name ends at the first ']' or, lacking one, at the end of the line; anything
        // after the ']' is ignored.
        std::string_view rest = t.substr(1);
        std::size_t close = rest.find(']');
        p.kind = Kind::Section;
        p.name = TrimBlanks(close == std::string_view::npos ? rest : rest.substr(0, close));
    } else {
        std::size_t eq = t.find('=');
        if (eq == std::string_view::npos) {
            p.kind = Kind::Other;
        } else {
            p.kind = Kind::Entry;
            p.name = TrimBlanks(t.substr(0, eq));
            p.value = TrimBlanks(t.substr(eq + 1));
        }
    }
    return p;
}

std::string Utf16ToUtf8(const std::string& bytes, std::size_t from, std::size_t to) {
    std::string out;
    out.reserve((to - from) / 2 * 3 / 2);
    auto unit = [&](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) |
               (static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8);
    };
    for (std::size_t i = from; i + 1 < to; i += 2) {
        std::uint32_t u = unit(i);
        if (u >= 0xD800 && u < 0xDC00 && i + 3 < to) {
            std::uint32_t low = unit(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                Util::AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00));
                i += 2;
                continue;
            }
        }
        Util::AppendUtf8(out, u);
    }
    return out;
}

void AppendUnit(std::string& out, std::uint32_t u) {
    out += static_cast<char>(u & 0xFF);
    out += static_cast<char>(u >> 8);
}

// Text that is not well-formed UTF-8 gets U+FFFD per bad byte, as a code-page conversion would.
// Three-byte forms of surrogates are accepted: they stand for lone surrogates read from a file.
std::string Utf8ToUtf16(const std::string& text) {
    static const std::uint32_t kMin[] = {0, 0x80, 0x800, 0x10000};
    std::string out;
    out.reserve(text.size() * 2);
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        std::size_t need = 4; // continuation bytes; 4 marks a byte that starts nothing
        if (c < 0x80)
            need = 0;
        else if (c >= 0xC2 && c < 0xE0)
            need = 1;
        else if (c >= 0xE0 && c < 0xF0)
            need = 2;
        else if (c >= 0xF0 && c < 0xF5)
            need = 3;
        std::uint32_t cp = 0xFFFD;
        std::size_t len = 1;
        if (need == 0) {
            cp = c;
        } else if (need < 4 && i + need < n) {
            std::uint32_t v = c & (0x3Fu >> need);
            bool ok = true;
            for (std::size_t k = 1; ok && k <= need; ++k) {
                const unsigned char cc = static_cast<unsigned char>(text[i + k]);
                ok = (cc & 0xC0) == 0x80;
                v = (v << 6) | (cc & 0x3F);
            }
            if (ok && v >= kMin[need] && v <= 0x10FFFF) {
                cp = v;
                len = need + 1;
            }
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            AppendUnit(out, 0xD800 + (cp >> 10));
            AppendUnit(out, 0xDC00 + (cp & 0x3FF));
        } else {
            AppendUnit(out, cp);
        }
        i += len;
    }
    return out;
}

void SplitLines(const std::string& text, std::vector<std::string>& texts,
                std::vector<std::string>& eols) {
    std::size_t start = 0;
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n; ++i) {
        char c = text[i];
        if (c != '\r' && c != '\n')
            continue;
        texts.emplace_back(text, start, i - start);
        if (c == '\r' && i + 1 < n && text[i + 1] == '\n') {
            eols.emplace_back("\r\n");
            ++i;
        } else {
            eols.emplace_back(1, c);
        }
        start = i + 1;
    }
    if (start < n) {
        texts.emplace_back(text, start, n - start);
        eols.emplace_back();
    }
}

} // namespace

ProfileText ProfileText::Parse(const std::string& bytes) {
    ProfileText result;
    std::string text;
    const std::string* source = &bytes;
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE) {
        result.m_utf16 = true;
        std::size_t end = bytes.size() - (bytes.size() % 2);
        if (end < bytes.size())
            result.m_oddByte = bytes.substr(end);
        text = Utf16ToUtf8(bytes, 2, end);
        source = &text;
    }
    std::vector<std::string> texts;
    std::vector<std::string> eols;
    SplitLines(*source, texts, eols);
    result.m_lines.reserve(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        result.m_lines.push_back(Line{std::move(texts[i]), std::move(eols[i])});
    return result;
}

std::string ProfileText::Serialize() const {
    std::string text;
    for (const Line& line : m_lines) {
        text += line.text;
        text += line.eol;
    }
    if (!m_utf16)
        return text;
    return std::string("\xFF\xFE", 2) + Utf8ToUtf16(text) + m_oddByte;
}

std::size_t ProfileText::FindSection(const std::string& name) const {
    std::string_view wanted = TrimSpaces(name);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        Parsed p = Classify(m_lines[i].text);
        if (p.kind == Kind::Section && SameName(p.name, wanted))
            return i;
    }
    return std::string::npos;
}

std::size_t ProfileText::SectionEnd(std::size_t header) const {
    std::size_t i = header + 1;
    while (i < m_lines.size() && Classify(m_lines[i].text).kind != Kind::Section)
        ++i;
    return i;
}

std::size_t ProfileText::FindKey(std::size_t header, const std::string& key) const {
    std::string_view wanted = TrimSpaces(key);
    for (std::size_t i = header + 1; i < m_lines.size(); ++i) {
        Parsed p = Classify(m_lines[i].text);
        if (p.kind == Kind::Section)
            break;
        if (p.kind == Kind::Entry && SameName(p.name, wanted))
            return i;
    }
    return std::string::npos;
}

bool ProfileText::FindValue(const std::string& section, const std::string& key,
                            std::string& value) const {
    std::size_t header = FindSection(section);
    if (header == std::string::npos)
        return false;
    std::size_t at = FindKey(header, key);
    if (at == std::string::npos)
        return false;
    std::string_view v = Classify(m_lines[at].text).value;
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        v = v.substr(1, v.size() - 2);
    value.assign(v.data(), v.size());
    return true;
}

std::vector<std::string> ProfileText::SectionNames() const {
    std::vector<std::string> names;
    for (const Line& line : m_lines) {
        Parsed p = Classify(line.text);
        if (p.kind == Kind::Section)
            names.emplace_back(p.name);
    }
    return names;
}

bool ProfileText::KeyNames(const std::string& section, std::vector<std::string>& names) const {
    std::size_t header = FindSection(section);
    if (header == std::string::npos)
        return false;
    for (std::size_t i = header + 1, end = SectionEnd(header); i < end; ++i) {
        Parsed p = Classify(m_lines[i].text);
        if (p.kind == Kind::Entry)
            names.emplace_back(p.name);
    }
    return true;
}

bool ProfileText::SectionEntries(const std::string& section,
                                 std::vector<std::string>& entries) const {
    std::size_t header = FindSection(section);
    if (header == std::string::npos)
        return false;
    for (std::size_t i = header + 1, end = SectionEnd(header); i < end; ++i) {
        Parsed p = Classify(m_lines[i].text);
        if (p.kind == Kind::Entry) {
            std::string entry(p.name);
            entry += '=';
            entry.append(p.value.data(), p.value.size());
            entries.push_back(std::move(entry));
        } else if (p.kind == Kind::Other) {
            entries.emplace_back(TrimBlanks(m_lines[i].text));
        }
    }
    return true;
}

std::string ProfileText::NewLineBreak() const {
    if (!m_lines.empty() && !m_lines.front().eol.empty())
        return m_lines.front().eol;
    return "\r\n";
}

void ProfileText::InsertLines(std::size_t at, const std::vector<std::string>& texts) {
    const std::string eol = NewLineBreak();
    if (at > 0 && m_lines[at - 1].eol.empty())
        m_lines[at - 1].eol = eol;
    std::vector<Line> added;
    added.reserve(texts.size());
    for (const std::string& t : texts)
        added.push_back(Line{t, eol});
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(at), added.begin(), added.end());
}

void ProfileText::AppendSection(const std::string& section, const std::vector<std::string>& texts) {
    std::vector<std::string> lines;
    lines.reserve(texts.size() + 1);
    lines.push_back("[" + std::string(TrimSpaces(section)) + "]");
    lines.insert(lines.end(), texts.begin(), texts.end());
    InsertLines(m_lines.size(), lines);
}

bool ProfileText::SetValue(const std::string& section, const std::string& key,
                           const std::string& value) {
    const std::string entry = std::string(TrimSpaces(key)) + "=" + value;
    std::size_t header = FindSection(section);
    if (header == std::string::npos) {
        AppendSection(section, {entry});
        return true;
    }
    std::size_t at = FindKey(header, key);
    if (at != std::string::npos) {
        // The key keeps its own spelling and indentation; only the value changes.
        std::string& text = m_lines[at].text;
        std::string updated = text.substr(0, text.find('=') + 1) + value;
        if (updated == text)
            return false;
        text = std::move(updated);
        return true;
    }
    // A new key goes after the last non-blank line of the section, so that blank lines
    // separating it from the next section stay where they are.
    std::size_t end = SectionEnd(header);
    std::size_t insertAt = header + 1;
    for (std::size_t i = header + 1; i < end; ++i)
        if (Classify(m_lines[i].text).kind != Kind::Blank)
            insertAt = i + 1;
    InsertLines(insertAt, {entry});
    return true;
}

bool ProfileText::RemoveKey(const std::string& section, const std::string& key) {
    std::size_t header = FindSection(section);
    if (header == std::string::npos)
        return false;
    bool changed = false;
    for (std::size_t at; (at = FindKey(header, key)) != std::string::npos;) {
        m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(at));
        changed = true;
    }
    return changed;
}

bool ProfileText::RemoveSection(const std::string& section) {
    bool changed = false;
    for (std::size_t header; (header = FindSection(section)) != std::string::npos;) {
        // Comments stay: they may describe something else than the section removed.
        std::size_t end = SectionEnd(header);
        std::vector<Line> kept;
        for (std::size_t i = header + 1; i < end; ++i)
            if (Classify(m_lines[i].text).kind == Kind::Comment)
                kept.push_back(m_lines[i]);
        m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(header),
                      m_lines.begin() + static_cast<std::ptrdiff_t>(end));
        m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(header), kept.begin(),
                       kept.end());
        changed = true;
    }
    return changed;
}

bool ProfileText::ReplaceSection(const std::string& section,
                                 const std::vector<std::string>& entries) {
    std::size_t header = FindSection(section);
    if (header == std::string::npos) {
        AppendSection(section, entries);
        return true;
    }
    std::size_t end = SectionEnd(header);
    // Blank lines at the end of the section stay as the separation from the next one.
    while (end > header + 1 && Classify(m_lines[end - 1].text).kind == Kind::Blank)
        --end;
    std::vector<std::string> old;
    for (std::size_t i = header + 1; i < end; ++i)
        old.push_back(m_lines[i].text);
    if (old == entries)
        return false;
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(header + 1),
                  m_lines.begin() + static_cast<std::ptrdiff_t>(end));
    InsertLines(header + 1, entries);
    return true;
}

} // namespace Profile
} // namespace Win32
} // namespace Util
