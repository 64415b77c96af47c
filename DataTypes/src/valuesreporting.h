// Reporting used by the value types (block string cache, Guid, unique ID generators).
//
// Every call goes through these few macros so that the value types report exactly like the
// rest of the library. Failure paths only: the hot paths evaluate a condition and nothing else.
//   VALUES_VERIFY(cond)                 -> bool; a false condition is reported as "(cond) is false"
//   VALUES_LOCAL_OPS(function, sig)     -> declares the function's reporting object
//   VALUES_REPORT(status)               -> reports the status through it and yields the status
//   VALUES_DUMP(fmt, ...)               -> one statistics line (a "DUMP" event)
#pragma once

#include "Util/Status.h"
#include "Util/Win32.h"

namespace Util {
namespace ValuesReporting {

// Stand-in until the operations manager is available: keeps the function's context so that the
// macros have their final shape.
class LocalScope {
public:
    LocalScope(const char* file, const char* function, const char* signature)
        : m_file(file), m_function(function), m_signature(signature) {}
    Status Report(const Status& status, long line) {
        m_line = line;
        return status;
    }

private:
    const char* m_file;
    const char* m_function;
    const char* m_signature;
    long m_line = 0;
};

inline bool Verify(bool condition, const char*, const char*, long) {
    return condition;
}
inline void Dump(const char*, ...) {}

} // namespace ValuesReporting
} // namespace Util

#define VALUES_VERIFY(cond)                                                                        \
    ((cond) ? true : ::Util::ValuesReporting::Verify(false, #cond, __FILE__, __LINE__))

#define VALUES_LOCAL_OPS(function, signature)                                                      \
    ::Util::ValuesReporting::LocalScope valuesLocalOps(__FILE__, function, signature)

#define VALUES_REPORT(status) valuesLocalOps.Report((status), __LINE__)

#define VALUES_DUMP(...) ::Util::ValuesReporting::Dump(__VA_ARGS__)
