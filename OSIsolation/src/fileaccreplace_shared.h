// The shapes every redirected file function is built from: the redirected name, the activity
// test, the event texts and the three ways of reporting (before the call, after a failed call,
// and passed through).
#pragma once

#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/ReDirectFile.h"
#include "Util/TString.h"
#include "Util/Win32.h"

namespace Util {
namespace FileAcc {

// The source file every event names, whichever file of the module raised it.
extern const char* const kModuleFile;

// A requested name and the name the real function gets. Null stays null (the real function
// reports it), and nothing is copied when there are no rules.
class Name {
public:
    explicit Name(const char* requested) : m_requested(requested) {
        if (requested != nullptr && ReDirectFile::HasRules())
            m_applied = ReDirectFile::GetRedirectedFile(m_redirected, TString(requested));
    }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

    const char* Requested() const { return m_requested; }
    const char* Real() const { return m_applied ? m_redirected.c_str() : m_requested; }

private:
    const char* m_requested;
    TString m_redirected;
    bool m_applied = false;
};

inline const char* Text(const char* text) {
    return text != nullptr ? text : "(null)";
}

// Formats and raises one MESSAGE event; the caller has checked that it is wanted.
void Raise(Ops::Level level, const SourceContext& where, const char* format, ...);

inline bool Wanted(Ops::Level level) {
    return Ops::IsEventLevelActive(Ops::kMessage, level);
}

// One line per name, before the call: requested, redirected, the function's own fields, then the
// caller's source and line.
template <class... Fields>
void Trace(const SourceContext& where, const char* format, const Name& name, const char* source,
           int line, Fields... fields) {
    if (Wanted(Ops::kLvlInfoDetail))
        Raise(Ops::kLvlInfoDetail, where, format, Text(name.Requested()), Text(name.Real()),
              fields..., Text(source), line);
}

// One line per name after a failed call, ending with the Win32 error.
inline void ReportFailure(const SourceContext& where, const char* format, const Name& name,
                          const char* source, int line, DWORD error) {
    if (Wanted(Ops::kLvlNA))
        Raise(Ops::kLvlNA, where, format, Text(name.Requested()), Text(name.Real()), Text(source),
              line, static_cast<int>(error));
}

// An unredirected call: the arguments, then the caller's source and line.
template <class... Arguments>
void PassThrough(const SourceContext& where, const char* format, const char* source, int line,
                 Arguments... arguments) {
    if (Wanted(Ops::kLvlInfoDetail))
        Raise(Ops::kLvlInfoDetail, where, format, Text(arguments)..., Text(source), line);
}

inline bool Failed(BOOL result) {
    return result == FALSE;
}
inline bool Failed(HANDLE result) {
    return result == INVALID_HANDLE_VALUE;
}

} // namespace FileAcc
} // namespace Util

// Where an event comes from: the module, the wrapper's line, its name and signature.
#define ZT_FILEACC_WHERE(fn)                                                                       \
    ::Util::SourceContext(::Util::FileAcc::kModuleFile, __LINE__, "Util::" #fn, ZT_FUNC_SIG)

// The line of a traced or failed call: ",fn, <o>Original,"%s",<r>Redirected ,"%s" <fields>,
// source, %s,line, %d". o and r are the words before Original and Redirected ("" for one name).
#define ZT_FILEACC_LINE(fn, o, r, fields)                                                          \
    "," #fn ", " o "Original,\"%s\"," r "Redirected ,\"%s\" " fields ",  source, %s,line, %d"
#define ZT_FILEACC_TRACED(fn, fields) ZT_FILEACC_LINE(fn, "", "", fields)
#define ZT_FILEACC_FAILED(fn, o, r) ZT_FILEACC_LINE(fn, o, r, ",, ") ", Error:%d"
