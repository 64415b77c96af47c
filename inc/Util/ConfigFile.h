// FileSystem::ConfigFile: a read-only, in-memory view of a sectioned "key=value" text file.
//
// Contract: LoadFile empties the contents, then reads the file line by line. A line's first
// character decides what it is (no white space is skipped): an empty line is skipped, a line
// whose first character is one of commentChars is a comment, "[" opens a section (its name
// runs to the first "]", or to the end of the line when there is none; "[]" goes back to the
// empty-named section that holds the keys before any header), anything else is a key line
// split at its first "=" (no "=": the whole line is the key and the value is empty). Nothing is
// trimmed or unquoted; a key seen again in a section replaces the earlier value. Section names
// and keys are matched without case (Util::CompareStrings), and iteration follows that order.
// CRLF and LF both end a line.
//
// Lines are read into a 4096-character buffer; a line that fills 4095 characters of it, line
// end included, is too long (so 4093 characters is the longest line accepted). It stops the
// load with status -9 "Exceeded internal buffer length" (what was read before it stays), after
// the message event "File %s had line longer than %d" (the file name and 4096). A file that
// cannot be opened gives -8 "Could not open file <name>" and empty contents.
//
// The status member records the last failed load and is never reset by a later successful one:
// only the constructors set success. Lookups never fail: GetStringValue and GetSectionStrings
// create an empty section when the named one is missing (so it is listed afterwards by
// GetSectionNames, which never lists the empty-named section). GetIntValue converts with atoi,
// so a key that is present with an empty or non-numeric value gives 0, not the default.
// One thread at a time, even for lookups.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/StringHelpers.h"
#include "Util/TString.h"

#include <cstring>
#include <map>
#include <vector>

namespace FileSystem {

class ZTUTIL_API ConfigFile {
public:
    // A looked-up name, so that a lookup by a plain text builds no TString.
    struct NameRef {
        explicit NameRef(const char* name)
            : text(name != nullptr ? name : ""), length(std::strlen(text)) {}
        const char* text;
        std::size_t length;
    };
    // Util::CompareStrings' case-blind order.
    struct NameLess {
        using is_transparent = void;
        bool operator()(const Util::TString& a, const Util::TString& b) const {
            return Util::CompareCaseBlind(a.c_str(), a.GetLength(), b.c_str(), b.GetLength()) < 0;
        }
        bool operator()(const Util::TString& a, const NameRef& b) const {
            return Util::CompareCaseBlind(a.c_str(), a.GetLength(), b.text, b.length) < 0;
        }
        bool operator()(const NameRef& a, const Util::TString& b) const {
            return Util::CompareCaseBlind(a.text, a.length, b.c_str(), b.GetLength()) < 0;
        }
    };
    typedef std::map<Util::TString, Util::TString, NameLess> KeyMap;
    typedef std::map<Util::TString, KeyMap, NameLess> SectionMap;

    ConfigFile();
    // Loads the file; the result is kept in the status (GetStatus).
    ConfigFile(const char* fileName, const char* commentChars);
    ConfigFile(const ConfigFile& other);
    ConfigFile& operator=(const ConfigFile& other);
    // Takes the other's contents (leaving it empty) and copies its status.
    ConfigFile(ConfigFile&& other) noexcept;
    ConfigFile& operator=(ConfigFile&& other) noexcept;
    ~ConfigFile();

    // commentChars must not be null; an empty set means no line is a comment.
    Util::Status LoadFile(const char* fileName, const char* commentChars);

    Util::TString GetStringValue(const char* section, const char* key, const char* defaultValue);
    int GetIntValue(const char* section, const char* key, int defaultValue);
    int GetSectionNames(std::vector<Util::TString>& names);
    // "key=value" for each key of the section, or the key alone when its value is empty.
    int GetSectionStrings(const char* section, std::vector<Util::TString>& strings);
    Util::Status GetStatus() const { return m_status; }

private:
    KeyMap& Section(const char* section);

    SectionMap m_contents;
    Util::Status m_status;
};

} // namespace FileSystem
