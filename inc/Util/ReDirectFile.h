// Util::ReDirectFile: the process-wide rules that decide in which directory a file really lives.
//
// A rule maps a requested directory prefix to a real directory. GetRedirectedFile looks through
// the rules in order and applies the first one whose prefix matches the requested name on whole
// path segments: the prefix "C:\Data" matches "C:\Data" and "C:\Data\Books\ledger.dat" but not
// "C:\Database". The part of the name after the prefix is appended to the real directory as it
// stands. '\' and '/' count as the same separator in prefixes and names, trailing separators of
// a prefix are ignored, and letters compare case-blind on Windows and exactly on POSIX. Names are
// compared as texts: nothing is made absolute or resolved. When no rule applies, the redirected
// name is the requested name unchanged.
//
// The rules are read once, on first use, from the section "Redirect" of "FileLocations.ini":
// every entry is "requested directory prefix=real directory", in file order, for example
//
//   [Redirect]
//   C:\Program Files\Tallywick\Reports=D:\Shared\Reports
//   /opt/tallywick/data=/srv/tallywick/data
//
// (The key is the prefix, so a prefix cannot contain '=' and two prefixes that differ only in
// case are one key.) SetRules, AddRule and ClearRules replace or change the list afterwards;
// LoadRules reads the section of another INI file. Every operation is safe from any thread, and
// a change is seen by the next call of GetRedirectedFile on any thread.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/TString.h"

#include <cstddef>
#include <vector>

namespace Util {

class ZTUTIL_API ReDirectFile {
public:
    struct Rule {
        TString requested; // the directory prefix that callers ask for
        TString real;      // the directory where such files really are
    };

    // Fills redirected with the real name of requested; returns whether a rule applied.
    static bool GetRedirectedFile(TString& redirected, const TString& requested);
    // The same, and the index in GetRules() of the rule that applied (unchanged when none did).
    static bool GetRedirectedFile(TString& redirected, const TString& requested,
                                  std::size_t& ruleIndex);
    // True when there is at least one rule; lets callers skip copying names when there is none.
    static bool HasRules();

    static std::vector<Rule> GetRules();
    // Replaces every rule. A rule with an empty prefix (or one of separators only) is refused:
    // the status is invalid-argument, carries the rule's position as "RuleIndex", and the
    // rules stay as they were.
    static Status SetRules(const std::vector<Rule>& rules);
    // Appends one rule (after the others, so earlier rules keep precedence).
    static Status AddRule(const char* requestedPrefix, const char* realDirectory);
    static void ClearRules();
    // Replaces the rules with the section "Redirect" of the INI file; a missing file or section
    // gives no rules. An entry with an empty prefix or directory is skipped and reported.
    static Status LoadRules(const char* iniPath);
    // The path of "FileLocations.ini" whose section "Redirect" was (or will be) read first.
    static TString GetDefaultIniPath();
};

} // namespace Util
