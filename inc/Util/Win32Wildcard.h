// Util::Win32Wildcard and Util::MatchesWin32Wildcard: does a file name match a find-first
// pattern, the way Windows' FindFirstFileA and _findfirst match the last component of their
// pattern?
//
// The pattern follows Windows' rules: '*' matches any run of characters and '?' one character;
// trailing dots of the pattern are ignored; "*.*" matches every name (also names without a dot);
// a '*' written before a '.' cannot run past the name's last dot ("*." matches names without an
// extension, "*.txt" needs the last extension to be "txt"); a '.' written before a wildcard also
// matches the end of the name ("a.*" matches "a"); a '?' written before a '.' or at the end also
// matches nothing ("a?" matches "a" and "ab"). ASCII letters compare case-blind; other bytes
// compare exactly. Null arguments never match.
//
// Win32Wildcard prepares a pattern once for matching many names (a directory listing): patterns
// of plain characters and '*' (the usual "*.txt", "ledger_*.dat") run in one pass with a single
// backtracking point; the others through a small automaton. A prepared pattern is immutable and
// may be used from several threads at once. MatchesWin32Wildcard keeps the last pattern it was
// given prepared per thread. Matching a prepared pattern allocates nothing (for automaton
// patterns, up to 299 characters).
#pragma once

#include "Util/Export.h"

#include <string>
#include <vector>

namespace Util {

class ZTUTIL_API Win32Wildcard {
public:
    // A null pattern matches nothing.
    explicit Win32Wildcard(const char* pattern);

    bool Matches(const char* name) const;

private:
    enum class Form : unsigned char { Nothing, Exact, Stars, General };
    Form m_form = Form::Nothing;
    std::string m_text;        // Exact: the pattern; Stars: folded characters and '*'
    std::vector<int> m_tokens; // General: the pattern as Windows rewrites it
};

ZTUTIL_API bool MatchesWin32Wildcard(const char* pattern, const char* name);

// True when the pattern holds '*' or '?' (a plain name is matched as a name, not a pattern).
ZTUTIL_API bool HasWin32Wildcard(const char* pattern);

} // namespace Util
