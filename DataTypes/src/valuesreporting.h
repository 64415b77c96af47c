// Reporting used by the value types (block string cache, Guid, unique ID generators).
//
// Thin wrappers over the operations manager that keep the hot paths to a bare test of the
// condition: the manager is reached only when something is to be reported.
//   VALUES_VERIFY(cond)              -> bool; a false condition is a VERIFY "(cond) is false"
//   VALUES_LOCAL_OPS(function, sig)  -> declares the function's Util::LocalOps under the given
//                                       function name (FUNC_ENTER now, FUNC_EXIT at scope end)
//   VALUES_REPORT(status)            -> reports the status through it (FUNC_STATUS), yields it
//   VALUES_DUMP(function, sig, fmt, ...) -> one statistics line as a DUMP event
#pragma once

#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/Status.h"

#define VALUES_VERIFY(cond)                                                                        \
    ((cond)                                                                                        \
         ? true                                                                                    \
         : ::Util::GetOps().Verify(false, #cond, ZT_SOURCE_FILE, __LINE__, __func__, ZT_FUNC_SIG))

#define VALUES_LOCAL_OPS(function, signature)                                                      \
    ::Util::LocalOps valuesLocalOps(ZT_SOURCE_FILE, __LINE__, function, signature)

#define VALUES_REPORT(status) valuesLocalOps.ReportStatus((status), __LINE__)

#define VALUES_DUMP(function, signature, ...)                                                      \
    (::Util::Ops::IsEventLevelActive(::Util::Ops::kDump, ::Util::Ops::kLvlInfoSummary)             \
         ? ::Util::Ops::MessageFunctor(::Util::GetOps(), ::Util::Ops::kLvlInfoSummary,             \
                                       ::Util::Ops::kDump, ZT_SOURCE_FILE, __LINE__, function,     \
                                       signature)(__VA_ARGS__)                                     \
         : false)
